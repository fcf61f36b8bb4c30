// Windows by the thousand, made and ended with all that hangs on them: nothing stays behind, in the
// program or in the server. QUORVIK_WINDOWS says how many.
#include <dirent.h>
#include <malloc.h>
#include <xcb/res.h>

#include <cstdlib>
#include <map>

#include "tests/x11/turn.h"
#include "toolkit/xw.h"

namespace x11_test {
namespace {

using namespace platform;

constexpr int kWindows = 2000, kWarm = 200;

int Handle(int type) {
  if (type == XWE_EXPOSE) {
    XwSet(Inp.window);
    XwDrawText(XWF_BOLD, 0x400, 0, 4, 100, 20, "Passing", 0x1D2022, -1);
  }
  return 0;
}

class Churn : public Toolkit<X11Test> {
 protected:
  // What the server keeps for this program, by kind.
  std::map<std::string, uint32_t> Resources() {
    FlushWindow(nullptr);
    xcb_connection_t* c = user().connection();
    std::map<std::string, uint32_t> out;
    const uint32_t id = xcb_get_setup(x11::x.c)->resource_id_base;
    auto* r =
        xcb_res_query_client_resources_reply(c, xcb_res_query_client_resources(c, id), nullptr);
    if (r == nullptr) return out;
    for (auto it = xcb_res_query_client_resources_types_iterator(r); it.rem != 0;
         xcb_res_type_next(&it)) {
      auto* name =
          xcb_get_atom_name_reply(c, xcb_get_atom_name(c, it.data->resource_type), nullptr);
      if (name != nullptr) {
        out[std::string(xcb_get_atom_name_name(name), size_t(name->name_len))] = it.data->count;
      }
      free(name);
    }
    free(r);
    auto* b = xcb_res_query_client_pixmap_bytes_reply(c, xcb_res_query_client_pixmap_bytes(c, id),
                                                      nullptr);
    if (b != nullptr) out["pixmap bytes"] = b->bytes;
    free(b);
    return out;
  }
  static int Descriptors() {
    DIR* d = opendir("/proc/self/fd");
    int n = 0;
    while (readdir(d) != nullptr) ++n;
    closedir(d);
    return n;
  }
  static int Mappings() {
    FILE* f = fopen("/proc/self/maps", "re");
    int n = 0;
    for (int ch; (ch = fgetc(f)) != EOF;) n += ch == '\n';
    fclose(f);
    return n;
  }
  void OneWindow(int i) {
    XwWindow* w = XwCreate(0, 10, 40, 150, 120, Handle);
    XwWindow* sub = XwCreate(w, 10, 10, 100, 60, Handle);
    XwShow(sub, 1);
    XwTimer(w, 1, 1);
    XwTimer(sub, 2, 100000);
    XwSet(w);
    XwBoxList(3, 0, 0, 0, 0);
    XwBoxList(10, 5, 5, 40, 40);
    XwBoxList(4, 0, 0, 0, 0);
    XwShow(w, 1);
    if (i % 3 != 0) TakeTurns();
    XwMove(w, 20, 50, 200, 150);
    if (i % 5 == 0) XwShow(w, 0);
    if (i % 7 == 0) XwGrabPointer(w, 3);
    for (int n = 0; n < 5; ++n) XwSendEvent(n % 2 != 0 ? w : sub, XWE_EXPOSE, 0, 0, 0);
    if (i % 4 == 0) TakeTurns();
    XwDestroy(w);
    if (i % 7 == 0) XwUngrabPointer();
    if (i % 2 == 0) TakeTurns();
  }
};

class Managers : public Churn, public testing::WithParamInterface<const char*> {};

TEST_P(Managers, ManyWindowsLeaveNothingBehind) {
  const char* wanted = getenv("QUORVIK_WINDOWS");
  // A window manager takes its time for each.
  const int count = wanted != nullptr ? atoi(wanted) : *GetParam() != 0 ? kWindows / 10 : kWindows;
  StartServer(GetParam(), {});
  XwSession("Churn", "Churn", 0);
  top = XwCreate(0, 300, 300, 100, 100, Handle);
  XwShow(top, 1);
  Rest();
  for (int i = 0; i < kWarm; ++i) OneWindow(i);
  Rest();
  const auto resources = Resources();
  ASSERT_GE(resources.size(), 3u);
  const int descriptors = Descriptors(), mappings = Mappings();
  const size_t memory = mallinfo2().uordblks;
  for (int i = 0; i < count; ++i) OneWindow(i);
  Rest();
  EXPECT_EQ(Resources(), resources);
  EXPECT_EQ(Descriptors(), descriptors);
  EXPECT_LE(Mappings(), mappings + 4);
  EXPECT_LE(mallinfo2().uordblks, memory + 65536);
  EXPECT_EQ(x11::x.windows.size(), 1u);
  EXPECT_TRUE(x11::x.out.empty());
  if (*GetParam() != 0) {
    EXPECT_TRUE(support::Eventually(
        [&] { return user().Words(user().root(), "_NET_CLIENT_LIST").size() == 1; }));
  }
}

INSTANTIATE_TEST_SUITE_P(Windows, Managers, testing::Values("", "openbox"),
                         [](const auto& i) { return *i.param != 0 ? i.param : "alone"; });

}  // namespace
}  // namespace x11_test
