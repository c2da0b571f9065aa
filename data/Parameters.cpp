#include "data/Parameters.h"

#include "data/MainFile.h"

namespace dw {
namespace {

constexpr const char* kParametersQuery = "SELECT * FROM [Parameters] WHERE [ID] = 1";

/// The column in the first row of the source; Null if there is no row or no file.
rt::Value Parameter(const char* source, const char* column) {
  MainFile file;
  if (!file.IsOpen()) return {};
  dao::Recordset& parameters = file.Read(source);
  return parameters.AtEnd() ? rt::Value() : parameters.Get(column);
}

}  // namespace

rt::DateTime GetCloseOutDate() {
  const rt::Value date = Parameter("Parameters", "Transaction Close Out Date");
  return date.Type() == rt::ValueType::Date ? date.AsDate() : rt::DateTime(1800, 1, 1);
}

std::int32_t GetDeletedInventoryID() {
  const rt::Value id = Parameter(kParametersQuery, "Deleted Inventory ID");
  return id.IsNull() ? 0 : id.AsLong();
}

bool InternalFuelAvailable() {
  const rt::Value available = Parameter(kParametersQuery, "Internal_Fuel_Available");
  return !available.IsNull() && available.AsBoolean();
}

}  // namespace dw
