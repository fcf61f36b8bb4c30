// The described tree as the inspector's clients see it: looked for by role and name, and as JSON.
#pragma once
#include <string>
#include <vector>

#include "platform/access/access.h"

namespace platform {

struct Address {
  std::string role, name;
  bool has_name = false;  // an empty name is one
  int number = 0;         // of several, from 1; 0: there is only one
  bool empty() const { return role.empty() && !has_name; }
};

// A node with what it lies in, the top-level window first.
struct Found {
  const DescribedNode* node;
  std::vector<const DescribedNode*> above;
};

// The nodes that show and have the address, in the order of the tree, whatever its number.
std::vector<Found> FindNodes(const std::vector<DescribedNode>& roots, const Address& address);
// The part of its rectangle that is not cut off by what it lies in; global, logical pixels.
Rect VisiblePart(const Found& found);

bool IsRoleName(const std::string& name);
// "button \"Print\""; for messages.
std::string Words(const Address& address);
// Appends the node as an object; `deep`: with everything that is in it.
void PutNode(std::string* out, const DescribedNode& node, bool deep);
void PutNodes(std::string* out, const std::vector<DescribedNode>& nodes);

}  // namespace platform
