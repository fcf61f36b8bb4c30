/* Edit boxes: texts, numbers, texts of other scripts, one that can only be read, a field that is
 * edited in its place, and the clipboard. The last line says what was reported. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "toolkit/xw.h"

enum { INK = 0x1D2022, GREY = 0x646A6E, NONE = -1 };
enum { NAME = 1, COPIES = 2, NOTE = 3, PATH = 4, OFF_BOX = 5, SEARCH = 6, FORMAT = 7 };
enum { COPY = 20, PASTE = 21, RENAME = 22, CLEAR = 23 };
enum { ON = XWC_ENABLED | XWC_VISIBLE };
enum { LEFT = 20, FIELD = 110, WIDTH = 290, STEP = 34 };

static XwWindow *window, *boxes[8], *status;
static XwFont* caption;
static char label[256] = "Tray 2, coated";
static const char* const formats[] = {"*.pdf", "*.tif", "", "*", NULL};

static void Caption(int y, const char* text) {
  XwDrawText(caption, 0, LEFT, y, 0, 0, text, GREY, NONE);
}

static void Draw(void) {
  XwSet(window);
  Caption(14, "EDIT BOXES");
  Caption(254, "EDITED IN PLACE");
  XwDrawText(XWF_NORMAL, 0, FIELD + 4, 274, 0, 0, label, INK, NONE);
  XwSync();
}

static XwWindow* Field(int row, const char* name, int id, int width, uint32_t style) {
  const int y = 32 + row * STEP;
  XwLabel(window, name, 0, LEFT - 2, y + 2, FIELD - LEFT, 20, ON | XWC_LEFT | XWC_COLON);
  return boxes[id] = XwEditBox(window, "", id, FIELD, y, width, 24, style);
}

static void Say(const char* text) {
  XwSetTextUtf8(status, text);
}

static void Reported(int type) {
  char text[400], value[300];
  XwWindow* box = Inp.item >= 1 && Inp.item <= FORMAT ? boxes[Inp.item] : NULL;
  XwGetTextUtf8(box, value, sizeof value);
  snprintf(text, sizeof text, "%d, item %d, value %d: %s", type, Inp.item, (int)Inp.value, value);
  Say(text);
}

/* Copies all of the note, and puts what the clipboard has behind it. */
static void Clipboard(int paste) {
  char text[4096];
  int length = XwGetTextUtf8(boxes[NOTE], text, sizeof text);
  if (!paste) {
    Say(XwSetClipboard(text) ? "copied" : "nobody took it");
    return;
  }
  char* got = XwGetClipboard(1000);
  if (got && length < (int)sizeof text)
    snprintf(text + length, sizeof text - (size_t)length, "%s", got);
  if (got) XwSetTextUtf8(boxes[NOTE], text);
  Say(got ? "pasted" : "the clipboard is empty");
  free(got);
}

static void Rename(void) {
  Say("Return confirms, the secondary button of the mouse gives up");
  Say(XwEditField(window, FIELD, 270, WIDTH, 24, label) ? "renamed" : "as before");
  XwSendEvent(window, XWE_EXPOSE, 0, 0, 0);
}

static int Handle(int type) {
  switch (type) {
    case XWE_EXPOSE:
      Draw();
      break;
    case XWE_EDIT_SELECT:
    case XWE_EDIT_CHANGED:
    case XWE_EDIT_DONE:
      Reported(type);
      break;
    case XWE_CONTROL:
      if (Inp.item == COPY || Inp.item == PASTE)
        Clipboard(Inp.item == PASTE);
      else if (Inp.item == RENAME)
        Rename();
      else if (Inp.item == CLEAR)
        XwSetText(boxes[NOTE], "");
      else
        Reported(type);
      break;
    case XWE_CLOSE:
    case XWE_QUIT:
      XwEndSession();
      exit(0);
    default:
      break;
  }
  return 0;
}

static void MakeBoxes(void) {
  Field(0, "Name", NAME, WIDTH, ON);
  Field(1, "Copies", COPIES, 60, ON);
  Field(2, "Note", NOTE, WIDTH, ON);
  Field(3, "Folder", PATH, WIDTH, ON | XWC_VARIANT);
  Field(4, "Out of use", OFF_BOX, WIDTH, XWC_VISIBLE);
  XwLabel(window, "Format", 0, FIELD + 70, 34 + STEP, 92, 20, ON | XWC_RIGHT | XWC_COLON);
  boxes[FORMAT] = XwComboBox(window, formats, FORMAT, FIELD + WIDTH - 120, 32 + STEP, 120, 24,
                             ON | XWC_EDITABLE, 0);
  Field(5, "Search", SEARCH, WIDTH, ON | XWC_DROPS_FOCUS);
  XwSetText(boxes[NAME], "report-2026.pdf");
  XwSetValue(boxes[COPIES], 2);
  XwSetTextUtf8(boxes[NOTE],
                "\xE5\xA4\xA7\xE5\x88\xA4 \xD0\x9F\xD0\xBB\xD0\xB0\xD0\xBA\xD0\xB0\xD1\x82 "
                "\xCE\xB1\xCE\xB2\xCE\xB3");
  XwSetText(boxes[PATH], "/srv/print/incoming");
  XwSetText(boxes[OFF_BOX], "not now");
  XwSetText(boxes[FORMAT], "*.pdf");
}

int main(void) {
  XwSession("fields", "Fields", 7);
  window = XwCreate(0, 200, 160, 420, 372, Handle);
  if (!window) return 1;
  XwSetGround(window, NULL, 2);
  caption = LoadFont(XWF_BOLD->name, 11, 0);
  MakeBoxes();
  XwButton(window, "Rename", RENAME, LEFT - 2, 270, 86, 26, ON, 0);
  XwButton(window, "Copy", COPY, FIELD + WIDTH - 220, 310, 70, 26, ON, 0);
  XwButton(window, "Paste", PASTE, FIELD + WIDTH - 144, 310, 70, 26, ON, 0);
  XwButton(window, "Clear", CLEAR, FIELD + WIDTH - 68, 310, 70, 26, ON, 0);
  status = XwLabel(window, "", 0, LEFT - 2, 342, 380, 20, ON | XWC_LEFT);
  XwShow(window, 1);
  XwSetFocus(boxes[NAME]);
  XwRunEventLoop();
}
