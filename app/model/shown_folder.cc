#include "app/model/shown_folder.h"

#include "app/format/words.h"

namespace console {

void ShownFolder::Begin(const std::string& path) {
  path_ = path;
  known_ = false;
}

void ShownFolder::Show(std::shared_ptr<const FolderContent> content) {
  path_ = content->path();
  stamp_ = content->stamp();
  known_ = true;
  trouble_.clear();
  rows_.Show(std::move(content));
}

void ShownFolder::Lose(int error, const FolderStamp& stamp) {
  known_ = true;
  trouble_ = TroubleText(error);
  stamp_ = stamp;
  rows_.Show(nullptr);
}

}  // namespace console
