// What the sample fleet is made of.
#pragma once

#include <cstdint>

namespace dw::sample {

struct FuelFacts {
  const char* description;
  int basePrice;  ///< ten-thousandths of a dollar a unit
  bool ownPump;   ///< drawn from the organization's own tank, and so in the internal price log
};

/// In the order of their IDs, from 1.
inline constexpr FuelFacts kFuels[] = {
    {"Unleaded Gasoline", 26500, true},       {"Premium Gasoline", 31500, false}, {"Diesel", 29500, true},
    {"Biodiesel B20", 30200, true},           {"Ethanol E85", 23100, false},      {"Propane", 19800, false},
    {"Compressed Natural Gas", 21400, false}, {"Electricity", 1350, false},
};
enum Fuel : int {
  kUnleaded = 1,
  kPremium,
  kDiesel,
  kBiodiesel,
  kEthanol,
  kPropane,
  kNaturalGas,
  kElectricity
};

/// The work that a class of assets can need.
enum Kind : unsigned { kCar = 1, kTruck = 2, kBus = 4, kElectric = 8, kHeavy = 16, kSmall = 32 };
inline constexpr unsigned kCombustion = kCar | kTruck | kBus | kHeavy | kSmall;
inline constexpr unsigned kRoad = kCar | kTruck | kBus | kElectric;
inline constexpr unsigned kAll = kCombustion | kElectric;

struct ClassFacts {
  const char* id;
  const char* description;
  const char* prefix;     ///< of the assets' codes
  const char* assets[3];  ///< what its assets are called
  const char* division;   ///< the one that has all of them, or null
  unsigned kind;
  int fuel;
  bool hours;           ///< its meter counts hours, not miles
  int dailyUsage;       ///< tenths of a mile or hour
  int fuelPerThousand;  ///< units of fuel for a thousand miles or hours
  int price;            ///< dollars
  int lifeYears;
};

// Two lines a row, so that the columns can be compared.
// clang-format off
inline constexpr ClassFacts kClasses[] = {
    {"SEDAN", "Sedans", "SED", {"Four-Door Sedan", "Compact Sedan", "Administrative Sedan"},
     nullptr, kCar, kUnleaded, false, 280, 40, 21500, 8},
    {"PATROL", "Patrol Cars", "PAT", {"Patrol Sedan", "Patrol Utility", "Supervisor Utility"},
     "POLICE", kCar, kUnleaded, false, 520, 58, 36500, 5},
    {"PICKUP", "Pickups", "PKP", {"Half-Ton Pickup", "Three-Quarter-Ton Pickup", "Crew Cab Pickup"},
     nullptr, kCar, kUnleaded, false, 300, 60, 29800, 10},
    {"VAN", "Vans", "VAN", {"Cargo Van", "Passenger Van", "Step Van"},
     nullptr, kCar, kUnleaded, false, 260, 65, 31200, 10},
    {"ELECTRIC", "Electric Cars", "ELE", {"Electric Hatchback", "Electric Sedan", "Electric Utility"},
     nullptr, kElectric, kElectricity, false, 260, 290, 33900, 9},
    {"MEDIUM", "Medium Trucks", "TRK", {"Flatbed Truck", "Stake Body Truck", "Service Body Truck"},
     nullptr, kTruck, kDiesel, false, 300, 110, 68500, 12},
    {"DUMP", "Dump Trucks", "DMP", {"Single-Axle Dump Truck", "Tandem Dump Truck", "Dump Truck With Plow"},
     nullptr, kTruck, kDiesel, false, 240, 170, 142000, 14},
    {"REFUSE", "Refuse Trucks", "REF", {"Rear Loader", "Side Loader", "Roll-Off Truck"},
     "SANIT", kTruck, kNaturalGas, false, 420, 330, 258000, 9},
    {"BUS", "Buses", "BUS", {"Transit Bus", "Shuttle Bus", "School Bus"},
     "TRANSIT", kBus, kBiodiesel, false, 600, 150, 188000, 12},
    {"LOADER", "Loaders and Graders", "LDR", {"Wheel Loader", "Backhoe Loader", "Motor Grader"},
     nullptr, kHeavy, kDiesel, true, 31, 4300, 164000, 15},
    {"MOWER", "Mowers", "MOW", {"Zero-Turn Mower", "Wide Area Mower", "Field Tractor"},
     nullptr, kSmall, kUnleaded, true, 15, 900, 17800, 7},
    {"GENSET", "Generators", "GEN", {"Standby Generator", "Trailer Generator", "Light Tower"},
     nullptr, kSmall, kPropane, true, 6, 2600, 22400, 20},
};
// clang-format on

struct WorkFacts {
  const char* description;
  unsigned kinds;
  int months;  ///< 0 for none
  int miles;   ///< 0 for none
  int hours;   ///< 0 for none; instead of the miles if the meter counts hours
  int labor;   ///< quarters of an hour
  int parts;   ///< dollars
  int oil;     ///< tenths of a unit
};

// clang-format off
/// In the order of their IDs, from 1. The first ones that apply to an asset are always on its schedule.
inline constexpr WorkFacts kWork[] = {
    {"Oil And Filter Change", kCombustion, 6, 5000, 250, 3, 14, 55},
    {"Annual Safety Inspection", kRoad | kHeavy, 12, 0, 0, 4, 0, 0},
    {"Tire Rotation", kCar | kElectric, 6, 7500, 0, 2, 0, 0},
    {"Brake Inspection", kRoad, 12, 15000, 0, 4, 38, 0},
    {"Air Filter Replacement", kCombustion, 0, 20000, 500, 1, 24, 0},
    {"Battery Test", kRoad | kHeavy | kSmall, 12, 0, 0, 1, 0, 0},
    {"Chassis Lubrication", kTruck | kBus | kHeavy, 3, 6000, 100, 2, 9, 0},
    {"Coolant Flush", kCombustion, 24, 30000, 1000, 5, 46, 0},
    {"Hydraulic System Service", kHeavy, 12, 0, 1000, 10, 185, 0},
    {"Transmission Service", kCar | kTruck | kBus, 0, 40000, 0, 8, 118, 0},
    {"Cabin Air Filter Replacement", kCar | kElectric | kBus, 12, 0, 0, 1, 19, 0},
    {"Wheel Alignment", kCar | kTruck | kElectric, 24, 24000, 0, 5, 0, 0},
    {"Fuel Filter Replacement", kTruck | kBus | kHeavy | kSmall, 0, 15000, 500, 2, 33, 0},
    {"Belt And Hose Inspection", kCombustion, 12, 0, 0, 2, 12, 0},
    {"Spark Plug Replacement", kCar | kSmall, 0, 60000, 300, 4, 44, 0},
    {"Differential Service", kTruck | kBus, 24, 50000, 0, 6, 72, 0},
    {"Emissions Test", kCar | kTruck | kBus, 24, 0, 0, 2, 18, 0},
    {"Blade Sharpening", kSmall, 2, 0, 50, 2, 4, 0},
    {"Air Brake Adjustment", kTruck | kBus, 4, 10000, 0, 3, 0, 0},
    {"Wheelchair Lift Inspection", kBus, 3, 0, 0, 3, 6, 0},
    {"Fire Extinguisher Inspection", kTruck | kBus | kHeavy, 12, 0, 0, 1, 8, 0},
    {"Load Test", kSmall, 12, 0, 0, 4, 0, 0},
    {"High Voltage Battery Check", kElectric, 12, 20000, 0, 4, 0, 0},
    {"Brake Fluid Exchange", kCar | kElectric, 24, 0, 0, 4, 21, 0},
    {"Wiper Blade Replacement", kRoad, 12, 0, 0, 1, 22, 0},
};
// clang-format on

struct RepairFacts {
  const char* notes;
  unsigned kinds;
  int labor;  ///< quarters of an hour
  int parts;  ///< dollars
};
inline constexpr RepairFacts kRepairs[] = {
    {"Replaced alternator", kCombustion, 7, 245},
    {"Replaced front brake pads and rotors", kRoad, 9, 190},
    {"Repaired flat tire", kRoad | kHeavy, 2, 12},
    {"Replaced headlamp bulb", kRoad | kHeavy, 1, 18},
    {"Replaced starter motor", kCombustion, 8, 210},
    {"Repaired door latch", kRoad, 4, 35},
    {"Replaced battery", kAll, 2, 135},
    {"Replaced cracked windshield", kRoad, 6, 310},
    {"Traced electrical short", kAll, 12, 20},
    {"Replaced water pump", kCombustion, 14, 165},
    {"Replaced seat cover", kRoad | kHeavy, 3, 85},
    {"Repaired hydraulic leak", kTruck | kHeavy, 6, 74},
};

struct CodeFacts {
  const char* id;
  const char* description;
};
inline constexpr CodeFacts kDivisions[] = {
    {"ADMIN", "Administration"},       {"FIRE", "Fire and Rescue"},
    {"PARKS", "Parks and Recreation"}, {"POLICE", "Police"},
    {"SANIT", "Sanitation"},           {"STREETS", "Streets and Drainage"},
    {"TRANSIT", "Public Transport"},   {"WATER", "Water and Sewer"},
};
inline constexpr const char* kLocations[] = {"CITY HALL", "EAST YARD", "NORTH YARD", "DEPOT", "PLANT 2"};
inline constexpr const char* kColors[] = {"White", "Silver", "Blue", "Green", "Yellow", "Black"};

}  // namespace dw::sample
