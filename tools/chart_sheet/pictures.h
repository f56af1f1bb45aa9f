#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/status.h"

namespace orvo::tools {

/// A message for the user that ends the program.
class ToolError {
 public:
  explicit ToolError(std::string message) : message_(std::move(message)) {}
  const std::string& message() const { return message_; }

 private:
  std::string message_;
};

/// Draws pictures of one size into a folder, and remembers them.
class Pictures {
 public:
  /// Makes the folder. Raises ToolError.
  Pictures(std::filesystem::path folder, std::int32_t width, std::int32_t height);

  std::int32_t width() const { return width_; }
  std::int32_t height() const { return height_; }

  using Draw = std::function<Status(const char16_t* file, std::int32_t width, std::int32_t height)>;
  /// Draws "NAME.png". Raises ToolError when that fails.
  void Add(std::string_view name, const Draw& draw);

  /// Puts all pictures, in the order in which they were drawn, on one sheet "contact-sheet.png". Raises ToolError.
  void WriteContactSheet() const;

 private:
  std::u16string PathOf(std::string_view name) const;

  std::filesystem::path folder_;
  std::int32_t width_;
  std::int32_t height_;
  std::vector<std::string> names_;
};

}  // namespace orvo::tools
