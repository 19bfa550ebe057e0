// Comparison, where the widths deliberately differ, and the item handlers
// that the lists build on.
#include <type_traits>

#include "strings/string_support.h"

namespace {
int Sign(int v) { return (v > 0) - (v < 0); }
}  // namespace

TEST(CompareNarrow, NullAndEmptyAreToldApartOnPurpose) {
  struct Row {
    std::string text;  // "" gives the null string
    const char* other;
    int sign;
  } rows[] = {
      {"", nullptr, 0},                     // both null
      {"", "", -1},                         // null below an empty text (deliberate)
      {std::string(1, '\0'), nullptr, -1},  // a leading zero below even null (deliberate)
      {std::string(1, '\0'), "", -1},       //
      {"a", nullptr, 1},                    //
      {"a", "", 1},                         //
      {"a", "a", 0},                        //
      {"a", "ab", -1},                      //
      {"\xE9", "a", 1},                     // strcmp: bytes compare unsigned
  };
  for (const Row& r : rows) EXPECT_EQ(Sign(Make<Ka_AString>(r.text).Compare(r.other)), r.sign) << r.text.size() << (r.other ? r.other : "(null)");
  EXPECT_LT(Make<Ka_AString>("ABC").CompareNoCase("abd"), 0);
}

TEST(CompareWide, IsThePlainUnitComparison) {
  const auto empty = Chars<Ka_WString>(""), a = Chars<Ka_WString>("a");
  const ka_wchar high[] = {0xFF21, 0};
  EXPECT_EQ(Ka_WString().Compare(nullptr), 0);
  EXPECT_EQ(Ka_WString().Compare(empty.c_str()), 0) << "null equals empty here (deliberate)";
  EXPECT_LT(Ka_WString().Compare(a.c_str()), 0);
  EXPECT_GT(Make<Ka_WString>("a").Compare(nullptr), 0);
  EXPECT_GT(Ka_WString(high).Compare(a.c_str()), 0) << "units compare unsigned";
  EXPECT_EQ(Make<Ka_WString>("ABC").CompareNoCase(Chars<Ka_WString>("abc").c_str()), 0);
}

template <class S>
class Items : public ::testing::Test {};
TYPED_TEST_SUITE(Items, BothStrings);

TYPED_TEST(Items, HandlerBuildsAssignsComparesAndDestroysStrings) {
  Ka_ListObjHandler& handler = std::is_same<TypeParam, Ka_AString>::value
                                   ? static_cast<Ka_ListObjHandler&>(Ka_AString::_KaAStringHandler)
                                   : static_cast<Ka_ListObjHandler&>(Ka_WString::_KaWStringHandler);
  Ka_ObjBufData* slot = handler.GetPool().Alloc();
  ASSERT_NE(slot, nullptr);
  void* item = handler._InitItem(slot->object());
  ASSERT_EQ(item, slot->object());
  EXPECT_EQ(static_cast<TypeParam*>(item)->GetData(), nullptr);

  TypeParam key = Make<TypeParam>("key"), lower = Make<TypeParam>("kex"), higher = Make<TypeParam>("kez"), none;
  handler._AssignItem(item, &key);
  EXPECT_EQ(Refs(key), 2) << "assignment shares";
  EXPECT_EQ(handler._CompareItem(item, &key), 0);
  EXPECT_GT(handler._CompareItem(item, &lower), 0);
  EXPECT_LT(handler._CompareItem(item, &higher), 0);
  EXPECT_GT(handler._CompareItem(item, &none), 0);
  EXPECT_GT(handler._CompareItem(item, nullptr), 0) << "a missing key counts as the null string";
  handler._FreeItem(item);
  EXPECT_EQ(Refs(key), 1) << "destroying the item released its text";
  slot->Release(&handler.GetPool());
  handler.GetPool().Free(slot);

  EXPECT_EQ(handler._InitItem(nullptr), nullptr);
  handler._FreeItem(nullptr);
  handler._AssignItem(nullptr, &key);
  handler._AssignItem(&key, nullptr);
  EXPECT_EQ(Text(key), "key");
}

TEST(ItemsNarrow, OrderFollowsTheNarrowCompareRules) {
  Ka_AString zero(std::string(1, '\0').c_str(), 1), none, a("a");
  Ka_ListObjHandler& handler = Ka_AString::_KaAStringHandler;
  EXPECT_LT(handler._CompareItem(&zero, &none), 0) << "a leading zero sorts before the null string";
  EXPECT_LT(handler._CompareItem(&none, &a), 0);
  EXPECT_EQ(handler._CompareItem(&none, &none), 0);
}
