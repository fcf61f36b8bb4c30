// One decoder a kind of document. Each reads standard input, which is a file at its beginning, and
// ends the program by TheReport().Finish. Whatever the file holds, they touch nothing else.
#pragma once

namespace preview {

[[noreturn]] void ShowPng();
[[noreturn]] void ShowJpeg();
[[noreturn]] void ShowTiff();
// By the programs that come with a PDF library, which work under the limits of this one.
[[noreturn]] void ShowPdf();
// Text, or what is no known kind.
[[noreturn]] void ShowText();

}  // namespace preview
