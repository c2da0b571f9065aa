#include "platform/print/output/PdfOutline.h"

#include <algorithm>
#include <string>

namespace print {
namespace {

struct Node {
  const OutlineEntry* entry = nullptr;
  int object = 0;
  int parent = -1;  ///< places among the nodes; -1 for none
  int previous = -1;
  int next = -1;
  int firstChild = -1;
  int lastChild = -1;
  int children = 0;
};

/// Makes `child` the last child of `parent`, which is -1 for the tree itself.
void Append(std::vector<Node>& nodes, Node& tree, int parent, int child) {
  Node& above = parent < 0 ? tree : nodes[static_cast<std::size_t>(parent)];
  nodes[static_cast<std::size_t>(child)].parent = parent;
  nodes[static_cast<std::size_t>(child)].previous = above.lastChild;
  if (above.lastChild >= 0)
    nodes[static_cast<std::size_t>(above.lastChild)].next = child;
  else
    above.firstChild = child;
  above.lastChild = child;
  ++above.children;
}

/// Whether entries lead into the range themselves or stand above one that does.
std::vector<bool> Wanted(const std::vector<OutlineEntry>& entries, int firstPage, int lastPage) {
  std::vector<bool> wanted(entries.size());
  int levelBelow = -1;  // an entry of this level, further on, is wanted and has nothing above it yet
  for (std::size_t i = entries.size(); i-- > 0;) {
    const OutlineEntry& entry = entries[i];
    const bool inRange = entry.page >= firstPage && entry.page <= lastPage;
    const bool above = levelBelow >= 0 && entry.level < levelBelow;
    wanted[i] = inRange || above;
    if (wanted[i]) levelBelow = entry.level;
  }
  return wanted;
}

}  // namespace

int WritePdfOutline(PdfFile& file, const std::vector<OutlineEntry>& entries, int firstPage,
                    const std::vector<PdfPagePlace>& pages) {
  const int lastPage = firstPage + static_cast<int>(pages.size()) - 1;
  const std::vector<bool> wanted = Wanted(entries, firstPage, lastPage);
  std::vector<Node> nodes;
  Node tree;
  std::vector<int> open;  // the chain of entries from the outermost to the last
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (!wanted[i]) continue;
    Node node;
    node.entry = &entries[i];
    node.object = file.Reserve();
    const int place = static_cast<int>(nodes.size());
    nodes.push_back(node);
    while (!open.empty() && nodes[static_cast<std::size_t>(open.back())].entry->level >= entries[i].level)
      open.pop_back();
    Append(nodes, tree, open.empty() ? -1 : open.back(), place);
    open.push_back(place);
  }
  if (nodes.empty()) return 0;
  tree.object = file.Reserve();

  const auto referred = [&](const char* key, int place) {
    return place < 0 ? std::string() : key + PdfReference(nodes[static_cast<std::size_t>(place)].object);
  };
  // A tree with one trunk is shown with its branches, others with their trunks alone.
  const bool openTrunk = tree.children == 1;
  for (const Node& node : nodes) {
    const int index = std::max(0, node.entry->page - firstPage);
    const PdfPagePlace& page = pages[static_cast<std::size_t>(index)];
    const Length top = node.entry->page < firstPage ? 0 : node.entry->top;
    std::string body =
        "<</Title" + PdfText(node.entry->title) + "/Parent " +
        PdfReference(node.parent < 0 ? tree.object : nodes[static_cast<std::size_t>(node.parent)].object) +
        referred("/Prev ", node.previous) + referred("/Next ", node.next) +
        referred("/First ", node.firstChild) + referred("/Last ", node.lastChild);
    if (node.children > 0)
      body += "/Count " + std::to_string(openTrunk && node.parent < 0 ? node.children : -node.children);
    body += "/Dest[" + PdfReference(page.object) + "/XYZ 0 ";
    AppendPoints(body, std::int64_t{page.height} - top);
    file.Object(node.object, body + " 0]>>");
  }
  const int shown = tree.children + (openTrunk ? nodes.front().children : 0);
  file.Object(tree.object, "<</Type/Outlines" + referred("/First ", tree.firstChild) +
                               referred("/Last ", tree.lastChild) + "/Count " + std::to_string(shown) + ">>");
  return tree.object;
}

}  // namespace print
