#pragma once

#include <gtest/gtest.h>

#include <source_location>
#include <tuple>
#include <type_traits>

#include "platform/unknown.h"

namespace orvo::test {

/// An object whose operations are asked for what they answer through their last argument, see Ask.
template <class T>
class Asked {
 public:
  Asked(T* object, const std::source_location& place) : object_(object), place_(place) {}

  /// An interface comes as a ComPtr, everything else as a value.
  template <class Interface, class... Parameters, class... Arguments>
  auto operator()(Status (Interface::*operation)(Parameters...), Arguments... arguments) const {
    using Last = std::tuple_element_t<sizeof...(Parameters) - 1, std::tuple<Parameters...>>;
    using Answer = std::remove_pointer_t<Last>;
    if constexpr (std::is_pointer_v<Answer> && std::is_base_of_v<IUnknown, std::remove_pointer_t<Answer>>) {
      ComPtr<std::remove_pointer_t<Answer>> answer;
      Expect((object_->*operation)(arguments..., answer.Out()));
      return answer;
    } else {
      Answer answer{};
      Expect((object_->*operation)(arguments..., &answer));
      return answer;
    }
  }

 private:
  void Expect(Status status) const {
    if (status == S_OK) return;
    ADD_FAILURE_AT(place_.file_name(), static_cast<int>(place_.line())) << "answered with " << status;
  }

  T* object_;
  std::source_location place_;
};

/// Lets an operation answer: `Ask(nodes)(&INodeStats::GetEntry, 3)` is the entry. Fails the test for any status but
/// S_OK.
template <class T>
Asked<T> Ask(const ComPtr<T>& object, const std::source_location& place = std::source_location::current()) {
  return {object.get(), place};
}

}  // namespace orvo::test
