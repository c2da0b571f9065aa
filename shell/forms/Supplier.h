// Who makes the program and whom to ask.
#pragma once

namespace dw::supplier {

inline constexpr const char* kName = "Brackenfel Software Solutions";
inline constexpr const char* kAddress = "P.O. Box 218, Hartsfield Mills";
inline constexpr const char* kTelephone = "(555) 555-0118";
inline constexpr const char* kFax = "(555) 555-0119";
inline constexpr const char* kMail = "support@brackenfel.example";
inline constexpr const char* kHours = "Monday to Friday, 8:00 AM to 5:00 PM";

}  // namespace dw::supplier
