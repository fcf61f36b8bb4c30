// What is selected, and the printer that it would go to. It scrolls where it has too little room.
#pragma once
#include <memory>

#include "app/look/hits.h"
#include "app/model/print_choice.h"
#include "app/model/printers.h"
#include "app/model/shown_folder.h"
#include "app/panes/layout.h"
#include "app/panes/scrolled_area.h"
#include "app/server/server.h"
#include "app/work/preview.h"

namespace console {

struct QueuePane;

struct DetailsPane {
  // Parts of its hits: buttons that go to another page.
  enum Part { kPreviousPage = 1, kNextPage };
  void MakeControls(XwWindow* window);
  // What it shows, or its place, may have changed.
  void Update();
  void Draw(const Hit& hover, bool focused) const;
  void AddHits(bool focused, Hits* hits) const;
  // Where the picture of the selected document, or job, stands, in sight or not; empty where it has
  // none.
  Area PictureArea() const;
  // Whether there is anything for the keyboard.
  bool TakesKeys() const { return !layout.details.Empty() && (scroll.Scrolls() || HasPages()); }
  // Whether its document shows one page of several.
  bool HasPages() const;
  // Page Up, Page Down, Home and End, where there are several pages: true when it was one of them.
  bool PageKey(int type);
  // Goes so many pages on or back, at most to the last or the first one; false when that is the
  // same.
  bool TurnPage(int by);

  // All are looked at for as long as the pane lives.
  const Layout& layout;
  const ShownFolder& folder;
  const PrintChoice& choice;
  const ServerState& state;
  const Printers& printers;
  int selected = -1;         // the row of the folder
  std::string several = "";  // what is said where it is not one that is selected; "": none is
  // The queue while it has the keyboard, else null: its jobs stand in place of the document.
  const QueuePane* jobs = nullptr;
  // Of the only job, where that was sent from here; else "".
  std::string job_file = "";
  // Of the selected document, or of the job's; null while there is none. Made for this many device
  // pixels per logical pixel.
  std::shared_ptr<const Preview> preview = nullptr;
  double preview_scale = 1;
  // Of its document: the page that is shown, or will be, and how many there are; 0: not known.
  int page = 1, pages = 0;
  // Whether the picture is higher than wide: of which page that was seen, 0 while `tall` is only
  // what the kind of the document lets expect.
  bool tall = false;
  int tall_page = 0;
  ScrolledArea scroll{20};
  std::string subject = "";  // what it shows: another one begins at its top
};

}  // namespace console
