#pragma once

#include <string>

#include "support/SmallFleet.h"

namespace test {

/// Rows for the analysis of what is due. Dates are SQL literals: "#1/10/2025#" or "NULL".
class DueFleet : public SmallFleet {
 public:
  void Asset(const std::string& code, const std::string& purchaseDate,
             const std::string& description = "'Truck'", bool retired = false) {
    Run("INSERT INTO [Vehicles] ([Asset ID], [Description], [Purchase Date], [No_Longer_In_Service]) VALUES "
        "('" +
        code + "', " + description + ", " + purchaseDate + ", " + (retired ? "TRUE" : "FALSE") + ")");
  }
  void Type(int id, const std::string& description) {
    Run("INSERT INTO [Maintenance Types] ([ID], [Description]) VALUES (" + std::to_string(id) + ", '" +
        description + "')");
  }
  void Reading(const std::string& code, const std::string& date, const std::string& mileage) {
    Run("INSERT INTO [Odometer Entries] ([Asset ID], [Date], [Mileage]) VALUES ('" + code + "', " + date +
        ", " + mileage + ")");
  }
  void Transaction(int id, const std::string& code, const std::string& date, const std::string& mileage) {
    Run("INSERT INTO [Maintenance Transactions] ([ID], [Asset ID], [Transaction Date], [Mileage], [Type_ID]) "
        "VALUES (" +
        std::to_string(id) + ", '" + code + "', " + date + ", " + mileage + ", 0)");
  }
  void Performed(int transaction, int type) {
    Run("INSERT INTO [Maintenance_Performed] ([Maintenance_Entry_ID], [Maintenance_Type_ID]) VALUES (" +
        std::to_string(transaction) + ", " + std::to_string(type) + ")");
  }
  /// Frequencies in months and in miles, or "NULL".
  void Line(const std::string& code, const std::string& type, const std::string& months,
            const std::string& miles) {
    Run("INSERT INTO [Maintenance Schedule] ([Asset ID], [Type ID], [Monthly Frequently], [Usage Frequency]) "
        "VALUES ('" +
        code + "', " + type + ", " + months + ", " + miles + ")");
  }
};

}  // namespace test
