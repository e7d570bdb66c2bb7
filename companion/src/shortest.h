#pragma once

namespace ZVPlatform
{

/// Writes the number that is nearest to `value` among those with the fewest digits that read back
/// to it, in the form, plain or with an exponent, that has fewer characters, the plain one if both
/// have as many: "0.1", "1e+05", "-0", "inf", "nan". These are the characters of `std::to_chars`,
/// but that no NaN has a sign. At most 24, and no null; `text` must have room for 40.
///
/// Returns the end.
char* WriteShortest(char* text, double value);
char* WriteShortest(char* text, float value);

}  // namespace ZVPlatform
