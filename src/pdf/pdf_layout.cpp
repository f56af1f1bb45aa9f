#include "pdf/pdf_layout.h"

namespace orvo {

void FitText(std::u16string* text, std::size_t length) {
  constexpr std::u16string_view kMore = u"...";
  if (text->size() <= length) return;
  text->resize(length - kMore.size());
  *text += kMore;
}

}  // namespace orvo
