#include "app/model/folder_rows.h"

#include <sys/stat.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <random>

#include "app/format/folding.h"
#include "app/format/words.h"

namespace console {
namespace {

// Not the same in each run, so that no folder can be made whose names all fall together.
uint64_t HashOf(std::string_view name) {
  static const uint64_t seed = std::random_device{}() * 0x9E3779B97F4A7C15u | 1;
  uint64_t hash = seed ^ name.size();
  while (!name.empty()) {
    uint64_t piece = 0;
    const size_t n = std::min<size_t>(name.size(), 8);
    memcpy(&piece, name.data(), n);
    name.remove_prefix(n);
    hash = (hash ^ piece) * (seed + 2);
    hash ^= hash >> 31;
  }
  return hash;
}

}  // namespace

std::shared_ptr<const FolderContent> FolderContent::Of(FolderListing listing,
                                                       UnreadEntries unread) {
  std::shared_ptr<FolderContent> content(new FolderContent);
  content->listing_ = std::move(listing);
  content->unread_ = unread;
  content->entries_ = content->listing_.entries.get();
  content->count_ = content->entries_ ? content->listing_.count : 0;
  // What leads upwards stands in front.
  while (content->count_ > 0 && (strcmp(content->entries_->name, ".") == 0 ||
                                 strcmp(content->entries_->name, "..") == 0)) {
    ++content->entries_;
    --content->count_;
  }
  content->MakeNames();
  content->MakeIndex();
  content->MakeOrders();
  return content;
}

FolderEntry FolderContent::At(int entry) const {
  if (entry < 0 || entry >= count_) return {"", false, 0, 0};
  const OS_ListEntryN& e = entries_[entry];
  return {e.name, S_ISDIR(e.target), int64_t(e.size), e.time};
}

std::string_view FolderContent::FoldedName(int entry) const {
  const auto i = size_t(entry);
  return std::string_view(folded_).substr(folded_at_[i], folded_at_[i + 1] - folded_at_[i]);
}

std::string_view FolderContent::Key(int entry) const {
  const auto i = size_t(entry);
  return std::string_view(keys_).substr(key_at_[i], key_at_[i + 1] - key_at_[i]);
}

void FolderContent::MakeNames() {
  folded_at_.reserve(size_t(count_) + 1);
  key_at_.reserve(size_t(count_) + 1);
  flags_.reserve(size_t(count_));
  for (int i = 0; i < count_; ++i) {
    folded_at_.push_back(folded_.size());
    key_at_.push_back(keys_.size());
    FoldInto(entries_[i].name, &folded_);
    keys_ += NaturalKey(entries_[i].name);
    const bool folder = S_ISDIR(entries_[i].target);
    folders_ += folder;
    flags_.push_back(uint8_t((folder ? kFolder : 0) | (entries_[i].name[0] == '.' ? kHidden : 0)));
  }
  folded_at_.push_back(folded_.size());
  key_at_.push_back(keys_.size());
}

void FolderContent::MakeIndex() {
  index_.assign(std::bit_ceil(size_t(count_) * 2 + 1), -1);
  const size_t mask = index_.size() - 1;
  for (int i = 0; i < count_; ++i) {
    size_t at = HashOf(entries_[i].name) & mask;
    while (index_[at] >= 0) at = (at + 1) & mask;
    index_[at] = i;
  }
}

int FolderContent::Find(std::string_view name) const {
  const size_t mask = index_.size() - 1;
  for (size_t at = HashOf(name) & mask; index_[at] >= 0; at = (at + 1) & mask)
    if (entries_[index_[at]].name == name) return index_[at];
  return -1;
}

// Names in a folder often begin alike, so what they have in common is compared once for all.
void FolderContent::SortByName(std::vector<int32_t>* entries) const {
  struct Named {
    uint64_t front;  // the first bytes behind what all have in common
    std::string_view key;
    int32_t entry;
  };
  if (entries->empty()) return;
  std::string_view common = Key(entries->front());
  for (const int32_t e : *entries) {
    const std::string_view key = Key(e);
    const auto ends = std::mismatch(common.begin(), common.end(), key.begin(), key.end());
    common = common.substr(0, size_t(ends.first - common.begin()));
  }
  std::vector<Named> named;
  named.reserve(entries->size());
  for (const int32_t e : *entries) {
    const std::string_view key = Key(e).substr(common.size());
    uint64_t front = 0;
    for (size_t i = 0; i < 8; ++i) front = front << 8 | (i < key.size() ? uint8_t(key[i]) : 0);
    named.push_back({front, key, e});
  }
  std::sort(named.begin(), named.end(), [this](const Named& a, const Named& b) {
    if (a.front != b.front) return a.front < b.front;
    const int order = a.key.compare(b.key);
    return order != 0 ? order < 0 : strcmp(entries_[a.entry].name, entries_[b.entry].name) < 0;
  });
  std::transform(named.begin(), named.end(), entries->begin(),
                 [](const Named& n) { return n.entry; });
}

void FolderContent::MakeOrders() {
  const auto n = size_t(count_);
  std::vector<int32_t> folders, files;
  for (int i = 0; i < count_; ++i) (IsFolder(i) ? folders : files).push_back(i);
  SortByName(&folders);
  SortByName(&files);
  std::vector<int32_t>& names = orders_[size_t(FileOrder::kName)];
  names = std::move(folders);
  names.insert(names.end(), files.begin(), files.end());

  // The others sort numbers; what is equal goes by name.
  std::vector<std::pair<int64_t, int32_t>> ranked(n);
  auto sort = [&](FileOrder order, auto&& number) {
    for (size_t i = 0; i < n; ++i) ranked[i] = {number(names[i]), int32_t(i)};
    std::sort(ranked.begin(), ranked.begin() + folders_);
    std::sort(ranked.begin() + folders_, ranked.end());
    std::vector<int32_t>& out = orders_[size_t(order)];
    out.resize(n);
    for (size_t i = 0; i < n; ++i) out[i] = names[size_t(ranked[i].second)];
  };
  sort(FileOrder::kSize, [&](int e) { return int64_t(entries_[e].size); });
  sort(FileOrder::kTime, [&](int e) { return entries_[e].time; });

  std::vector<std::string> kinds(n);
  for (size_t i = 0; i < n; ++i)
    if (!IsFolder(int(i))) kinds[i] = FileKindKey(entries_[i].name);
  std::vector<std::string> known = kinds;
  std::sort(known.begin(), known.end());
  known.erase(std::unique(known.begin(), known.end()), known.end());
  sort(FileOrder::kKind, [&](int e) {
    return std::lower_bound(known.begin(), known.end(), kinds[size_t(e)]) - known.begin();
  });
}

// --- FolderRows

void FolderRows::Show(std::shared_ptr<const FolderContent> content) {
  content_ = std::move(content);
  Choose();
}

void FolderRows::Sort(FileOrder order, bool descending) {
  order_ = order;
  descending_ = descending;
  Arrange();
}

void FolderRows::Filter(std::string_view text) {
  filter_ = NameFilter(text);
  Choose();
}

void FolderRows::ShowHidden(bool show) {
  show_hidden_ = show;
  Choose();
}

// Who asks for an ending looks for files of a kind: all folders stay then, since the way to more
// such files leads through them. Who types anything else looks for what is called so, with a star
// or without, and that may be a folder among many: it is held to the filter as files are.
bool FolderRows::Matches(int entry) const {
  if (filter_.empty() || filter_.MatchesFolded(content_->FoldedName(entry))) return true;
  return filter_.AsksForEnding() && content_->IsFolder(entry);
}

// In the order in which the entries lie in memory, which is several times as fast as in another.
void FolderRows::Choose() {
  files_ = all_ = 0;
  bytes_ = 0;
  row_of_.assign(content_ ? size_t(content_->count()) : 0, -1);
  for (int entry = 0; entry < int(row_of_.size()); ++entry) {
    if (!show_hidden_ && content_->IsHidden(entry)) continue;
    ++all_;
    if (!Matches(entry)) continue;
    row_of_[size_t(entry)] = 0;
    if (content_->IsFolder(entry)) continue;
    ++files_;
    bytes_ += content_->SizeOf(entry);
  }
  Arrange();
}

// What Choose took stands in its row.
void FolderRows::Arrange() {
  rows_.clear();
  if (!content_) return;
  auto take = [this](int32_t entry) {
    if (row_of_[size_t(entry)] < 0) return;
    row_of_[size_t(entry)] = int(rows_.size());
    rows_.push_back(entry);
  };
  const std::vector<int32_t>& order = content_->In(order_);
  const int folders = content_->folders(), n = content_->count();
  // Folders stay in front when the order is turned over.
  for (int i = 0; i < folders; ++i) take(order[size_t(descending_ ? folders - 1 - i : i)]);
  for (int i = folders; i < n; ++i) take(order[size_t(descending_ ? n - 1 - (i - folders) : i)]);
}

int FolderRows::RowOf(std::string_view name) const {
  const int entry = content_ ? content_->Find(name) : -1;
  return entry < 0 ? -1 : row_of_[size_t(entry)];
}

FolderEntry FolderRows::At(int row) const {
  return row < 0 || row >= count() ? FolderEntry{"", false, 0, 0}
                                   : content_->At(rows_[size_t(row)]);
}

int FolderRows::FindBeginning(std::string_view text, int from) const {
  const std::string wanted = Folded(text);
  const int n = count();
  for (int i = 0; i < n; ++i) {
    const int row = (std::max(from, 0) + i) % n;
    if (content_->FoldedName(rows_[size_t(row)]).starts_with(wanted)) return row;
  }
  return -1;
}

int FolderRows::unread() const {
  if (!content_) return 0;
  return content_->unread().plain + (show_hidden_ ? content_->unread().hidden : 0);
}

std::string FolderRows::UnreadText() const {
  return unread() > 0 ? NumberOf(unread(), "entry cannot be read", "entries cannot be read") : "";
}

std::string FolderRows::CountText() const {
  if (!content_) return "";
  std::string text;
  const int folders = count() - files_;
  if (filtered())
    text = NumberText(count()) + " of " + NumberOf(all_, "entry", "entries");
  else if (folders == 0)
    text = NumberOf(files_, "file", "files");
  else
    text = NumberOf(folders, "folder", "folders") + ", " + NumberOf(files_, "file", "files");
  if (unread() > 0) text += ", " + UnreadText();
  return text;
}

std::string FolderRows::NoteText() const {
  if (!content_) return "This folder has not been read yet";
  if (leaves_out()) return HidesText(all_, count(), "entry", "entries");
  if (count() > 0) return "";
  if (unread() > 0) return UnreadText();
  const bool hidden = content_->count() > 0;
  return hidden ? "This folder has hidden entries only" : "This folder is empty";
}

}  // namespace console
