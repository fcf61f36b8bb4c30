// The rows of a folder's table: what was read, in the order and through the filter that are asked
// for. Nothing here touches the file system (work/folder_reader.h and work/unread_entries.h do).
//
// All that takes long with 100,000 entries is done once, on the thread that reads the folder
// (FolderContent::Of); sorting, filtering and searching then walk over them once.
#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/model/folder.h"
#include "app/model/name_filter.h"

namespace console {

enum class FileOrder : uint8_t { kName, kSize, kTime, kKind };
constexpr int kFileOrders = 4;

// How many entries the folder names but could not be looked at.
struct UnreadEntries {
  int plain = 0, hidden = 0;
};

// A folder as it was read. Never changes, so that any thread may look at it.
class FolderContent {
 public:
  // The listing is to be one of folders and files, the hidden ones too, in any order.
  static std::shared_ptr<const FolderContent> Of(FolderListing listing, UnreadEntries unread = {});

  const std::string& path() const { return listing_.path; }
  const FolderStamp& stamp() const { return listing_.stamp; }
  // Without "." and "..".
  int count() const { return count_; }
  FolderEntry At(int entry) const;
  int64_t SizeOf(int entry) const { return int64_t(entries_[entry].size); }
  bool IsFolder(int entry) const { return flags_[size_t(entry)] & kFolder; }
  bool IsHidden(int entry) const { return flags_[size_t(entry)] & kHidden; }
  std::string_view FoldedName(int entry) const;
  // -1 when there is none of that name.
  int Find(std::string_view name) const;
  // Each order with folders in front, from the smallest on.
  const std::vector<int32_t>& In(FileOrder order) const { return orders_[size_t(order)]; }
  int folders() const { return folders_; }
  const UnreadEntries& unread() const { return unread_; }

 private:
  FolderContent() = default;
  enum Flags : uint8_t { kFolder = 1, kHidden = 2 };
  void MakeNames();
  void MakeIndex();
  void MakeOrders();
  void SortByName(std::vector<int32_t>* entries) const;
  std::string_view Key(int entry) const;

  FolderListing listing_;
  const OS_ListEntryN* entries_ = nullptr;
  int count_ = 0, folders_ = 0;
  UnreadEntries unread_;
  // The folded names, and the natural keys, one behind the other, and where each begins.
  std::string folded_, keys_;
  std::vector<size_t> folded_at_, key_at_;
  std::vector<uint8_t> flags_;
  // By the hash of a name: the entry, or the next place; -1: none. Its size is a power of two.
  std::vector<int32_t> index_;
  std::array<std::vector<int32_t>, kFileOrders> orders_;
};

class FolderRows {
 public:
  // Null: nothing is known.
  void Show(std::shared_ptr<const FolderContent> content);
  void Sort(FileOrder order, bool descending);
  void Filter(std::string_view text);
  void ShowHidden(bool show);

  // What Selection asks; ids are names.
  int count() const { return int(rows_.size()); }
  std::string IdAt(int row) const { return At(row).name; }
  int RowOf(std::string_view name) const;
  bool Has(std::string_view name) const { return content_ && content_->Find(name) >= 0; }

  // A row past the end is an entry without a name.
  FolderEntry At(int row) const;
  // The first row at or after `from`, and then from the top on, whose name begins with this text;
  // case and accents do not count. -1: none.
  int FindBeginning(std::string_view text, int from) const;
  const std::shared_ptr<const FolderContent>& content() const { return content_; }
  FileOrder order() const { return order_; }
  bool descending() const { return descending_; }
  bool filtered() const { return !filter_.empty(); }
  bool shows_hidden() const { return show_hidden_; }
  // Of what is shown.
  int files() const { return files_; }
  int64_t bytes() const { return bytes_; }
  // Of what a filter leaves out as well.
  int all() const { return all_; }
  bool leaves_out() const { return count() < all_; }
  int unread() const;
  // "4 entries cannot be read"; "" when all can.
  std::string UnreadText() const;

  // "340 files", "12 of 340 entries", "3 folders, 12 files", and what could not be read.
  std::string CountText() const;
  // What is said below the rows, or in their place: what a filter leaves out, or why there are
  // none.
  std::string NoteText() const;

 private:
  void Choose();
  void Arrange();
  bool Matches(int entry) const;

  std::shared_ptr<const FolderContent> content_;
  FileOrder order_ = FileOrder::kName;
  bool descending_ = false, show_hidden_ = false;
  NameFilter filter_;
  std::vector<int32_t> rows_;    // entries of the content
  std::vector<int32_t> row_of_;  // by entry, -1: not shown
  int files_ = 0, all_ = 0;
  int64_t bytes_ = 0;
};

}  // namespace console
