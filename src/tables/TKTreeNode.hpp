// TKTreeNode: a general tree of nodes with keyed data.
//
// Each node owns an ordered list of child nodes (positions from 1) and a
// small store of data values, each under a 32-bit identifier; children can
// be searched by a stored value.
//
// Lifetime: holding any node keeps its whole tree alive, and dropping the
// last outside reference to every node of a tree frees all of it.  The
// nodes' structure and data live in one shared tree record that every node
// object holds; the record refers to the node objects only weakly (a node
// object that nobody holds goes away and is made afresh when asked for), so
// parent and child references form no cycle.  A node object is the same
// object for as long as anyone holds it.
#pragma once

#include <cstdint>
#include <memory>

#include "automation/Members.hpp"

namespace TessarkAO {

class TKTreeNode final : public Dispatch<TKTreeNode> {
 public:
  static constexpr std::string_view kClassName = "TKTreeNode";
  static void Describe(ClassBuilder<TKTreeNode>& b);

  TKTreeNode();  // the root of a new tree
  ~TKTreeNode() override;

  // The node that created this one with AddNode; Nothing for a root.
  Ref<TKTreeNode> Parent() const;
  // A new last child.
  Ref<TKTreeNode> AddNode();
  // The number of children, or with IncludeSubNodes of all descendants.
  std::int32_t Nodes(bool includeSubNodes = false) const;
  // Child `index` (from 1), or Nothing.
  Ref<TKTreeNode> Node(std::int32_t index) const;
  // The first child from StartIndex on whose value under DataID matches
  // DataValue: the same variant type and, for objects, the same object,
  // otherwise equal values (so a 16-bit 3 does not match a 32-bit 3, by
  // design).  Nothing when none matches.  Only direct children are searched.
  // 9 for a StartIndex below 1 when there are children to search; 13 when
  // array values would be compared.
  Ref<TKTreeNode> GetNodeWithData(std::int32_t dataID, const Variant& dataValue, std::int32_t startIndex = 1) const;
  // Stores pData under ID (replacing a value stored there); always True.
  bool SetData(std::int32_t id, const Variant& pData);
  bool DataExists(std::int32_t id) const;
  // The value under ID (an object as the same reference), or Empty.
  Variant GetData(std::int32_t id) const;
  // This node's position in its parent's children; 0 for a root.
  std::int32_t Index() const;
  // How many children (with IncludeSubNodes: descendants) match as for
  // GetNodeWithData.
  std::int32_t NodesWithData(std::int32_t dataID, const Variant& dataValue, bool includeSubNodes = false) const;

 private:
  struct Tree;
  TKTreeNode(std::shared_ptr<Tree> tree, std::size_t node);
  static Ref<TKTreeNode> Handle(const std::shared_ptr<Tree>& tree, std::size_t node);
  bool Matches(std::size_t child, std::int32_t dataID, const Variant& dataValue) const;

  std::shared_ptr<Tree> tree_;
  std::size_t node_;
};

}  // namespace TessarkAO
