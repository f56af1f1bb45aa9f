#pragma once

#include <string>
#include <string_view>

#include "platform/status.h"

namespace orvo {

/// How a locale writes numbers.
struct NumberFormat {
  std::u16string decimal = u".";  ///< at most 16 characters, as the next
  std::u16string thousand = u",";
  std::u16string negative_sign = u"-";
  bool leading_zero = true;  ///< a number below 1 starts with 0
  int grouping = 3;          ///< digits in a group, 0 for none
  int negative_order = 1;    ///< 0 (1), 1 -1, 2 - 1, 3 1-, 4 1 -
  int decimals = 2;          ///< 0 to 9
};

/// The user's default locale as it is now.
NumberFormat ReadNumberFormat();

/// Groups and punctuates a number written with an optional minus sign, digits, and an optional full stop with exactly
/// `format.decimals` digits behind it. False, and nothing changed, for any other text and for more than 9 decimals.
bool PunctuateNumber(std::string_view number, const NumberFormat& format, std::u16string* out);

/// The value rounded to `decimals` digits (negative counts as 0) in the user's locale, whose number format is read on
/// the first call of the process. A text that PunctuateNumber does not take stays as it was printed: infinity, what is
/// no number, and a single digit without decimals, which is printed behind a blank.
/// The result replaces `out`. E_POINTER for a null out text.
Status FormatNumber(double value, int decimals, std::u16string* out);

}  // namespace orvo
