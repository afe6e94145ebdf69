// TKTreeNode: structure, keyed data and search, node identity, and the
// lifetime of a tree (alive while any node is held, freed with the last).

#include "TableTestUtil.hpp"
#include "tables/TKTreeNode.hpp"

using namespace TessarkAO;
using namespace TessarkAO::TestUtil;

namespace {

// Counts its own destruction.
class Canary final : public Dispatch<Canary> {
 public:
  static constexpr std::string_view kClassName = "Canary";
  static void Describe(ClassBuilder<Canary>&) {}
  explicit Canary(int& gone) : gone_(gone) {}
  ~Canary() override { ++gone_; }

 private:
  int& gone_;
};

}  // namespace

TEST(TreeNode, StructureAndIdentity) {
  auto root = MakeRef<TKTreeNode>();
  Ref<TKTreeNode> a = root->AddNode(), b = root->AddNode();
  for (int i = 0; i < 3; ++i) a->AddNode();
  EXPECT_EQ((std::array{root->Nodes(), root->Nodes(true), a->Nodes(true), b->Nodes(true)}),
            (std::array{2, 5, 3, 0}));
  EXPECT_EQ((std::array{b->Index(), root->Index(), a->Node(3)->Index()}), (std::array{2, 0, 3}));
  // The same node is the same object, however it is reached.
  EXPECT_EQ((std::array{root->Parent().get(), root->Node(0).get(), root->Node(3).get(), root->Node(2).get(),
                        a->Node(3)->Parent().get(), a->Parent().get()}),
            (std::array<TKTreeNode*, 6>{nullptr, nullptr, nullptr, b.get(), a.get(), root.get()}));
}

TEST(TreeNode, DataAndSearch) {
  auto root = MakeRef<TKTreeNode>();
  std::vector<Ref<TKTreeNode>> kids;
  for (int i = 0; i < 4; ++i) kids.push_back(root->AddNode());
  auto marker = MakeRef<TKColumn>();
  EXPECT_TRUE(kids[0]->SetData(7, Variant(std::int16_t{3})));
  for (std::size_t i : {1, 2}) kids[i]->SetData(7, Variant(3));
  kids[3]->SetData(7, Variant(marker));
  kids[3]->SetData(8, Variant("x"));
  EXPECT_TRUE(kids[3]->SetData(8, Variant("y")));  // replaces
  EXPECT_EQ(kids[3]->GetData(8).AsString(), "y");
  EXPECT_TRUE(kids[3]->GetData(9).IsEmpty());
  EXPECT_FALSE(kids[3]->DataExists(9));
  EXPECT_EQ(kids[3]->GetData(7).AsObject().get(), marker.get());
  EXPECT_TRUE(root->GetNodeWithData(8, Variant("Y")) == nullptr);  // texts compare with their case
  // The variant types must be the same: a 16-bit 3 is not a 32-bit 3; objects compare by identity.
  auto find = [&](Variant v, std::int32_t start) { return root->GetNodeWithData(7, v, start).get(); };
  EXPECT_EQ((std::array{find(Variant(3), 1), find(Variant(3), 3), find(Variant(std::int16_t{3}), 1),
                        find(Variant(3.0), 1), find(Variant(marker), 1),
                        find(Variant(MakeRef<TKColumn>()), 1), find(Variant(3), 9)}),
            (std::array<TKTreeNode*, 7>{kids[1].get(), kids[2].get(), kids[0].get(), nullptr, kids[3].get(),
                                        nullptr, nullptr}));
  EXPECT_EQ(ErrorOf([&] { root->GetNodeWithData(7, Variant(3), 0); }), 9);
  EXPECT_EQ(root->NodesWithData(7, Variant(3)), 2);
  kids[1]->AddNode()->SetData(7, Variant(3));
  EXPECT_EQ(std::make_pair(root->NodesWithData(7, Variant(3)), root->NodesWithData(7, Variant(3), true)),
            std::make_pair(2, 3));
  // Arrays do not compare; Null never equals.
  kids[0]->SetData(1, Variant(SafeArray::Vector(VarType::Long, 0, 1)));
  EXPECT_EQ(ErrorOf([&] { root->GetNodeWithData(1, Variant(SafeArray::Vector(VarType::Long, 0, 1))); }), 13);
  kids[0]->SetData(2, Variant::Null());
  EXPECT_TRUE(root->GetNodeWithData(2, Variant::Null()) == nullptr);
  // Many identifiers on one node.
  for (std::int32_t id = 100; id < 200; ++id) kids[2]->SetData(id, Variant(id * 2));
  for (std::int32_t id = 100; id < 200; ++id) ASSERT_EQ(kids[2]->GetData(id).AsLong(), id * 2);
  kids[2]->SetData(150, Variant(-1));
  EXPECT_EQ(kids[2]->GetData(150).AsLong(), -1);
  EXPECT_EQ(kids[2]->GetData(7).AsLong(), 3);
}

TEST(TreeNode, AnyHeldNodeKeepsTheTreeAndTheLastReleaseFreesIt) {
  int gone = 0;
  Ref<TKTreeNode> grandchild;
  {
    auto root = MakeRef<TKTreeNode>();
    root->SetData(1, Variant(MakeRef<Canary>(gone)));
    grandchild = root->AddNode()->AddNode();
    grandchild->SetData(1, Variant(MakeRef<Canary>(gone)));
  }
  EXPECT_EQ(gone, 0);
  // The whole tree is reachable from the grandchild.
  Ref<TKTreeNode> root = grandchild->Parent()->Parent();
  ASSERT_TRUE(root);
  EXPECT_TRUE(root->GetData(1).IsObject());
  EXPECT_EQ(root->Nodes(true), 2);
  root.reset();
  grandchild.reset();
  EXPECT_EQ(gone, 2);

  // Nodes of another tree held as data keep only that tree alive.
  gone = 0;
  {
    auto top = MakeRef<TKTreeNode>();
    Ref<TKTreeNode> child = top->AddNode();
    child->SetData(1, Variant(MakeRef<Canary>(gone)));
    top->SetData(2, Variant(MakeRef<TKTreeNode>()));  // a node of another tree
    child->SetData(3, Variant(top->GetData(2)));
  }
  EXPECT_EQ(gone, 1);
}

TEST(TreeNode, DeepTreesAreCountedWithoutRecursion) {
  auto root = MakeRef<TKTreeNode>();
  Ref<TKTreeNode> node = root;
  for (int i = 0; i < 60000; ++i) {
    node = node->AddNode();
    if (i % 2 == 0) node->SetData(5, Variant(1));
  }
  EXPECT_EQ(root->Nodes(true), 60000);
  EXPECT_EQ(root->NodesWithData(5, Variant(1), true), 30000);
}
