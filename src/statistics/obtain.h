#pragma once

#include "engine/categories.h"

namespace orvo {

/// The category of a context, null when it has none.
template <class T>
ComPtr<T> Obtain(IStatsContext& context, const Category<T>& category) {
  ComPtr<T> object;
  if (Failed(GetCategory(&context, category, &object))) object.Reset();
  return object;
}

}  // namespace orvo
