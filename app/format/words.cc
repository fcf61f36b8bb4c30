#include "app/format/words.h"

#include <cerrno>

#include "app/format/cut.h"
#include "app/format/folding.h"
#include "app/format/texts.h"

namespace console {
namespace {

constexpr int kMostInQuestion = 40;
constexpr size_t kLongestEnding = 8;

struct Kind {
  std::string_view ending;
  const char* text;
};
constexpr Kind kKinds[] = {
    {"pdf", "PDF document"},
    {"ps", "PostScript document"},
    {"eps", "EPS picture"},
    {"ai", "AI drawing"},
    {"svg", "SVG drawing"},
    {"png", "PNG picture"},
    {"jpg", "JPEG picture"},
    {"jpeg", "JPEG picture"},
    {"tif", "TIFF picture"},
    {"tiff", "TIFF picture"},
    {"gif", "GIF picture"},
    {"bmp", "BMP picture"},
    {"webp", "WebP picture"},
    {"psd", "layered picture"},
    {"txt", "Text"},
    {"log", "Text"},
    {"md", "Text"},
    {"csv", "Table"},
    {"html", "Web page"},
    {"htm", "Web page"},
    {"xml", "XML document"},
    {"prn", "Printer data"},
    {"icc", "Colour profile"},
    {"icm", "Colour profile"},
    {"zip", "Archive"},
    {"gz", "Archive"},
    {"tar", "Archive"},
    {"7z", "Archive"},
};

struct Trouble {
  int error;
  const char* text;
};
constexpr Trouble kTroubles[] = {
    {EACCES, "you are not allowed to read it"},
    {EPERM, "you are not allowed to do this"},
    {ENOENT, "it is not there any more"},
    {ENOTDIR, "it is not a folder"},
    {EISDIR, "it is a folder"},
    {ELOOP, "its links lead in a circle"},
    {ENAMETOOLONG, "its name is too long"},
    {ENOSPC, "the disk is full"},
    {EDQUOT, "your share of the disk is full"},
    {EROFS, "the disk can only be read"},
    {EIO, "the disk reports a fault"},
    {ENODEV, "its disk is not there any more"},
    {ENXIO, "its disk is not there any more"},
    {ESTALE, "its server has lost it"},
    {EHOSTDOWN, "its server does not answer"},
    {EHOSTUNREACH, "its server cannot be reached"},
    {ENETUNREACH, "its server cannot be reached"},
    {ENOTCONN, "the connection to it is lost"},
    {ECONNRESET, "the connection broke"},
    {EPIPE, "the connection broke"},
    {ETIMEDOUT, "it does not answer"},
    {EAGAIN, "the system is too busy, try again"},
    {EMFILE, "too many files are open"},
    {ENFILE, "too many files are open"},
    {ENOMEM, "there is not enough memory"},
    {EBUSY, "something else uses it"},
    {EFBIG, "it is too large"},
};

}  // namespace

std::string NumberText(int64_t n) {
  std::string text = std::to_string(n);
  const size_t first = n < 0 ? 2 : 1;
  for (size_t at = text.size(); at > first + 2;) text.insert(at -= 3, 1, ',');
  return text;
}

std::string NumberOf(int64_t n, const char* one, const char* many) {
  return NumberText(n) + " " + (n == 1 ? one : many);
}

std::string HidesText(int all, int shown, const char* one, const char* many) {
  if (shown > 0)
    return "The filter hides " + NumberText(all - shown) + " other " +
           (all - shown == 1 ? one : many);
  return "The filter hides " +
         (all == 1 ? "the only " + std::string(one) : "all " + NumberOf(all, one, many));
}

std::string Quoted(std::string_view name) {
  return "“" + CutMiddle(Shown(std::string(name)), kMostInQuestion) + "”";
}

std::string FileKindKey(std::string_view name) {
  return Folded(EndingOf(name));
}

std::string FileKindText(std::string_view name) {
  std::string key = FileKindKey(name);
  for (const Kind& kind : kKinds)
    if (kind.ending == key) return kind.text;
  if (key.empty() || key.size() > kLongestEnding) return "File";
  for (char& c : key) {
    if (c < '0' || c > 'z' || (c > '9' && c < 'a')) return "File";
    if (c >= 'a') c = char(c - 32);
  }
  return key + " file";
}

const char* TroubleText(int error) {
  for (const Trouble& t : kTroubles)
    if (t.error == error) return t.text;
  return "the system refuses it";
}

std::string MissingText(const std::vector<std::string>& names) {
  if (names.size() == 1) return Quoted(names.front()) + ": no such file or folder";
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? ": " : ", ") + Quoted(name);
  return NumberText(int64_t(names.size())) + " files are missing" + list;
}

}  // namespace console
