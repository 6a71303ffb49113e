#pragma once
// The values of imported sources put into the form the chart reads: coordinate text, heights
// and lengths in metres with "M", leg altitudes in feet with "F", rho in the reader's unit
// (2053 to the nautical mile), courses with one decimal, magnetic variation from 0 to 360, and
// the numbers the chart prints as they stand (headings, frequencies, runway sizes) with the
// decimals of its own data. A value already in the reader's form is kept as written; one without
// a unit letter is metres, as BglComp takes it, but rho, which is then in the reader's unit.

#include <optional>
#include <string>
#include <string_view>

namespace velmora {

struct Converted {
  std::string text;
  std::string problem;  // why the value was left empty; empty when it was taken
};

// Signed degrees of a coordinate in any form the sources use: the reader's ("N49 12.11"),
// decimal degrees ("-123.16384524107"), degrees-minutes-seconds ("N49* 12' 6.67\"").
std::optional<double> CoordinateDegrees(std::string_view value, bool latitude);

Converted CoordinateValue(std::string_view value, bool latitude);
Converted LengthValue(std::string_view value);      // elevations
Converted RunwaySizeValue(std::string_view value);  // runway lengths and widths
Converted AltitudeValue(std::string_view value);    // leg altitudes
Converted RhoValue(std::string_view value);
Converted CourseValue(std::string_view value);  // leg courses and ILS headings
Converted MagvarValue(std::string_view value);
Converted NavFrequencyValue(std::string_view value);  // ILS and VOR
Converted ComFrequencyValue(std::string_view value);
Converted NdbFrequencyValue(std::string_view value);

// Nautical miles between two positions, near enough for telling navaids of one ident apart.
double DistanceNm(double lat1, double lon1, double lat2, double lon2);
// Initial great-circle true course from the first position to the second, 0 to 360 degrees.
double TrueCourse(double lat1, double lon1, double lat2, double lon2);
// The course text a leg gets for `trueCourse` under the airport's `magvar` as its source writes
// it (either form MagvarValue takes; none or unreadable counts as 0).
std::string MagneticCourseText(double trueCourse, std::string_view magvar);

}  // namespace velmora
