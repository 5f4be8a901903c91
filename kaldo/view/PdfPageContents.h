// More content for the one page of a finished PDF file, painted under
// what the page shows already, added by an incremental update: the file
// is copied unchanged, the new content streams follow as new objects, then
// the page again, now listing them before its own content, and a
// cross-reference section for what was added and changed.
#pragma once

#include <vector>

class QIODevice;

namespace kaldo::view {

// pdf is a finished PDF file of one page, open for reading; each of
// contents holds a deflated content stream, open for reading from its
// start. Throws FileError when pdf is not such a file or a write fails.
void addPageContentsUnder(QIODevice& pdf, const std::vector<QIODevice*>& contents, QIODevice& out);

}  // namespace kaldo::view
