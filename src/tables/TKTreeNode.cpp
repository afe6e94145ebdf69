#include "tables/TKTreeNode.hpp"

#include <unordered_map>
#include <vector>

#include "automation/Catalogue.hpp"
#include "tables/TableLimits.hpp"

namespace TessarkAO {

namespace {
constexpr std::size_t kNoParent = static_cast<std::size_t>(-1);
// Data stores up to this size are searched in place; larger ones get an index.
constexpr std::size_t kIndexedFrom = 8;
}  // namespace

struct TKTreeNode::Tree {
  struct NodeData {
    std::size_t parent = kNoParent;
    std::int32_t index = 0;  // position in the parent's children, from 1
    std::vector<std::size_t> children;
    std::vector<Variant> values;
    std::vector<std::int32_t> ids;
    std::unordered_map<std::int32_t, std::size_t> positions;  // built once the store grows
    TKTreeNode* handle = nullptr;  // the live node object, if any (not a reference)

    // Position of `id` among the identifiers, or values.size().
    std::size_t Find(std::int32_t id) const {
      if (ids.size() < kIndexedFrom) {
        for (std::size_t i = 0; i < ids.size(); ++i)
          if (ids[i] == id) return i;
        return ids.size();
      }
      auto it = positions.find(id);
      return it == positions.end() ? ids.size() : it->second;
    }
  };
  std::vector<NodeData> nodes;
};

void TKTreeNode::Describe(ClassBuilder<TKTreeNode>& b) {
  b.Get<&TKTreeNode::Parent>("Parent",
                             Doc{"The node that created this one with AddNode; Nothing for a root."})
      .Method<&TKTreeNode::AddNode>("AddNode", Doc{"Appends a new child and returns it."})
      .Get<&TKTreeNode::Nodes>("Nodes", Names{"IncludeSubNodes"}, Opt{Variant(false)},
                               Doc{"The number of children, or with IncludeSubNodes of all descendants."})
      .Get<&TKTreeNode::Node>("Node", Names{"Index"}, Doc{"Child Index (from 1), or Nothing."})
      .Method<&TKTreeNode::GetNodeWithData>(
          "GetNodeWithData", Names{"DataID", "DataValue", "StartIndex"}, Opt{Variant(1)},
          Doc{"The first child from StartIndex on whose data under DataID matches DataValue (same type and "
              "value; for objects the same object); Nothing when none. 9 for StartIndex below 1, 13 for "
              "array values."})
      .Method<&TKTreeNode::SetData>(
          "SetData", Names{"ID", "pData"},
          Doc{"Stores pData under ID, replacing a value stored there; always True."})
      .Get<&TKTreeNode::DataExists>("DataExists", Names{"ID"}, Doc{"Whether a value is stored under ID."})
      .Method<&TKTreeNode::GetData>(
          "GetData", Names{"ID"},
          Doc{"The value stored under ID (an object as the same reference), or Empty."})
      .Get<&TKTreeNode::Index>("Index",
                               Doc{"This node's position among its parent's children; 0 for a root."})
      .Get<&TKTreeNode::NodesWithData>("NodesWithData", Names{"DataID", "DataValue", "IncludeSubNodes"},
                                       Opt{Variant(false)},
                                       Doc{"How many children (with IncludeSubNodes: descendants) have data "
                                           "matching as for GetNodeWithData."});
}

TKTreeNode::TKTreeNode() : tree_(std::make_shared<Tree>()), node_(0) {
  tree_->nodes.emplace_back();
  tree_->nodes[0].handle = this;
}

TKTreeNode::TKTreeNode(std::shared_ptr<Tree> tree, std::size_t node) : tree_(std::move(tree)), node_(node) {
  tree_->nodes[node_].handle = this;
}

TKTreeNode::~TKTreeNode() { tree_->nodes[node_].handle = nullptr; }

Ref<TKTreeNode> TKTreeNode::Handle(const std::shared_ptr<Tree>& tree, std::size_t node) {
  if (TKTreeNode* live = tree->nodes[node].handle) return Ref<TKTreeNode>(live);
  return Ref<TKTreeNode>(new TKTreeNode(tree, node));
}

Ref<TKTreeNode> TKTreeNode::Parent() const {
  const std::size_t parent = tree_->nodes[node_].parent;
  return parent == kNoParent ? Ref<TKTreeNode>() : Handle(tree_, parent);
}

Ref<TKTreeNode> TKTreeNode::AddNode() {
  auto& nodes = tree_->nodes;
  Tables::CheckElementCount(static_cast<std::int64_t>(nodes.size()) + 1);
  const std::size_t child = nodes.size();
  nodes.emplace_back();
  nodes[child].parent = node_;
  nodes[node_].children.push_back(child);
  nodes[child].index = static_cast<std::int32_t>(nodes[node_].children.size());
  return Handle(tree_, child);
}

std::int32_t TKTreeNode::Nodes(bool includeSubNodes) const {
  const auto& nodes = tree_->nodes;
  if (!includeSubNodes) return static_cast<std::int32_t>(nodes[node_].children.size());
  // All descendants, walked without recursion so that deep trees are safe.
  std::int64_t count = 0;
  std::vector<std::size_t> pending{node_};
  while (!pending.empty()) {
    const std::size_t n = pending.back();
    pending.pop_back();
    count += static_cast<std::int64_t>(nodes[n].children.size());
    pending.insert(pending.end(), nodes[n].children.begin(), nodes[n].children.end());
  }
  return static_cast<std::int32_t>(count);
}

Ref<TKTreeNode> TKTreeNode::Node(std::int32_t index) const {
  const auto& children = tree_->nodes[node_].children;
  if (index < 1 || static_cast<std::size_t>(index) > children.size()) return Ref<TKTreeNode>();
  return Handle(tree_, children[static_cast<std::size_t>(index - 1)]);
}

bool TKTreeNode::Matches(std::size_t child, std::int32_t dataID, const Variant& dataValue) const {
  const auto& data = tree_->nodes[child];
  const std::size_t at = data.Find(dataID);
  if (at == data.ids.size()) return false;
  const Variant& stored = data.values[at];
  const Variant& wanted = dataValue.Deref();
  if (stored.Type() != wanted.Type() || stored.IsArray() != wanted.IsArray()) return false;
  // Values of the same type compare as the classic runtime compares them:
  // arrays and error values do not compare at all, Null is never equal.
  if (stored.IsArray() || stored.Type() == VarType::Error) Raise(Err::TypeMismatch);
  switch (stored.Type()) {
    case VarType::Null: return false;
    case VarType::Object: return stored.AsObject() == wanted.AsObject();
    case VarType::Decimal: return DecimalToDouble(stored.AsDecimal()) == DecimalToDouble(wanted.AsDecimal());
    default: return SameValue(stored, wanted);
  }
}

Ref<TKTreeNode> TKTreeNode::GetNodeWithData(std::int32_t dataID, const Variant& dataValue,
                                            std::int32_t startIndex) const {
  const auto& children = tree_->nodes[node_].children;
  const auto count = static_cast<std::int64_t>(children.size());
  if (startIndex > count) return Ref<TKTreeNode>();
  // Children are held from position 1: a start below it is out of range.
  if (startIndex < 1) Raise(Err::SubscriptOutOfRange);
  for (std::int64_t i = startIndex; i <= count; ++i) {
    const std::size_t child = children[static_cast<std::size_t>(i - 1)];
    if (Matches(child, dataID, dataValue)) return Handle(tree_, child);
  }
  return Ref<TKTreeNode>();
}

std::int32_t TKTreeNode::NodesWithData(std::int32_t dataID, const Variant& dataValue, bool includeSubNodes) const {
  const auto& nodes = tree_->nodes;
  std::int64_t count = 0;
  std::vector<std::size_t> pending{node_};
  while (!pending.empty()) {
    const std::size_t n = pending.back();
    pending.pop_back();
    for (std::size_t child : nodes[n].children)
      if (Matches(child, dataID, dataValue)) ++count;
    if (includeSubNodes) pending.insert(pending.end(), nodes[n].children.begin(), nodes[n].children.end());
  }
  return static_cast<std::int32_t>(count);
}

bool TKTreeNode::SetData(std::int32_t id, const Variant& pData) {
  auto& data = tree_->nodes[node_];
  std::size_t at = data.Find(id);
  if (at == data.ids.size()) {
    data.ids.push_back(id);
    data.values.emplace_back();
    if (data.ids.size() == kIndexedFrom) {
      for (std::size_t i = 0; i < data.ids.size(); ++i) data.positions.emplace(data.ids[i], i);
    } else if (data.ids.size() > kIndexedFrom) {
      data.positions.emplace(id, at);
    }
  }
  // Replacing a value may release the last reference to another node of
  // this tree; this node keeps the tree itself alive meanwhile.
  Variant old = std::move(tree_->nodes[node_].values[at]);
  tree_->nodes[node_].values[at] = pData.Deref();
  return true;
}

bool TKTreeNode::DataExists(std::int32_t id) const {
  const auto& data = tree_->nodes[node_];
  return data.Find(id) != data.ids.size();
}

Variant TKTreeNode::GetData(std::int32_t id) const {
  const auto& data = tree_->nodes[node_];
  const std::size_t at = data.Find(id);
  return at == data.ids.size() ? Variant() : data.values[at];
}

std::int32_t TKTreeNode::Index() const { return tree_->nodes[node_].index; }

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKTreeNode)
