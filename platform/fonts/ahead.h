// What the first picture needs of fonts, made by another thread while the program connects to its
// display. One thread at a time works on fonts; there is none where the program has only one
// processor, which it would have to share.
#pragma once

namespace platform {

// Runs `open` and then opens the faces of all fonts there are. Until FinishOpening nobody else uses
// fonts. Called once more it does nothing.
void BeginOpening(void (*open)());
// Waits for that. Without another thread it runs `open`, and faces are opened by their first use.
void FinishOpening(void (*open)());
// There is no display to draw on.
void DropOpening();

}  // namespace platform
