// Texts that programs offer to one another: the names that the rooms and the displays share.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace platform {

// What is copied, and what is just selected.
enum class Selection : uint8_t { kClipboard, kPrimary };
constexpr int kSelectionCount = 2;

// UTF-8. Shared, so that a long text that somebody still reads can be replaced by another.
using SharedText = std::shared_ptr<const std::string>;

// Bytes of a text. A longer one is neither offered nor taken.
constexpr size_t kMostText = size_t{256} << 20;

}  // namespace platform
