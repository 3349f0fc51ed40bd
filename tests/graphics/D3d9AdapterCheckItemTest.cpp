#include "velm/D3d9AdapterCheckItem.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstring>
#include <tuple>

namespace velm {
namespace {

using Item = D3d9AdapterCheckItem;

constexpr GUID kGuid = {0xABCDEF01, 0x2345, 0x6789, {0x0A, 1, 2, 3, 4, 5, 6, 0xFF}};
constexpr GUID kOtherGuid = {0xABCDEF01, 0x2345, 0x6789, {0x0A, 1, 2, 3, 4, 5, 6, 0xFE}};

/// For one operand and one fact: by which of the operators -1 to 9 the rule holds, as bits.
template <typename T, typename Set, typename Check>
unsigned int Holding(T actual, T value, Set set, Check check) {
    unsigned int holding = 0;
    for (int compare = -1; compare < 10; ++compare) {
        Item item;
        (item.*set)(D3D9_ADAPTER_CHECK_CAPS, static_cast<D3d9AdapterParamCompare>(compare), value);
        holding |= ((item.*check)(actual) ? 1U : 0U) << (compare & 15);
    }
    return holding;
}

// The operators that hold for each relation of fact and operand; the bit tests stand apart.
constexpr unsigned int kLess = 0x32;     // !=, <=, <
constexpr unsigned int kEqual = 0x19;    // ==, >=, <=
constexpr unsigned int kGreater = 0x0E;  // !=, >, >=
constexpr unsigned int kUnordered = 0x02;
constexpr unsigned int kAny = 0x40;
constexpr unsigned int kNoneSet = 0x80;

template <typename T, typename Set, typename Check>
void ExpectIntegers(Set set, Check check, T smaller, T greater, unsigned int bits) {
    EXPECT_EQ(Holding<T>(smaller, greater, set, check), kLess | bits);
    EXPECT_EQ(Holding<T>(greater, smaller, set, check), kGreater | bits);
    EXPECT_EQ(Holding<T>(0x21, 0x21, set, check), kEqual | kAny);
    EXPECT_EQ(Holding<T>(0x21, 0x20, set, check), kGreater | kAny);
    EXPECT_EQ(Holding<T>(0x01, 0x20, set, check), kLess | kNoneSet);
    EXPECT_EQ(Holding<T>(0, 0, set, check), kEqual | kNoneSet);
}

TEST(D3d9AdapterCheckItem, IntegersCompareWithTheirOwnSignAndWidth) {
    ExpectIntegers<int>(&Item::SetAsInt32, &Item::CheckAsInt32, INT_MIN, 1, kNoneSet);
    ExpectIntegers<DWORD>(&Item::SetAsDWORD, &Item::CheckAsDWORD, 1, 0xFFFFFFFF, kAny);
    ExpectIntegers<unsigned int>(&Item::SetAsUINT, &Item::CheckAsUINT, 1, 0x80000000, kNoneSet);
    ExpectIntegers<long long>(&Item::SetAsInt64, &Item::CheckAsInt64, LLONG_MIN, 1LL << 32, kNoneSet);
    // The bit tests use the high half, too.
    EXPECT_EQ(Holding<long long>(3LL << 40, 1LL << 40, &Item::SetAsInt64, &Item::CheckAsInt64),
              kGreater | kAny);
}

TEST(D3d9AdapterCheckItem, OnlyNotEqualHoldsForANaN) {
    const float nan = std::nanf("");
    const std::tuple<float, float, unsigned int> cases[] = {
        {1.5f, 1.5f, kEqual},    {1.5f, std::nextafter(1.5f, 2.0f), kLess},
        {-0.0f, 0.0f, kEqual},   {HUGE_VALF, FLT_MAX, kGreater},
        {nan, 1.5f, kUnordered}, {1.5f, nan, kUnordered},
        {nan, nan, kUnordered}};
    for (const auto& [actual, value, holding] : cases) {
        EXPECT_EQ(Holding<float>(actual, value, &Item::SetAsFloat, &Item::CheckAsFloat), holding);
        EXPECT_EQ(Holding<double>(actual, value, &Item::SetAsDouble, &Item::CheckAsDouble), holding);
    }
    EXPECT_EQ(Holding<double>(1.0, 1.0 + DBL_EPSILON, &Item::SetAsDouble, &Item::CheckAsDouble), kLess);
}

TEST(D3d9AdapterCheckItem, TextsCompareWholeByUnsignedBytes) {
    const std::tuple<const char*, const char*, unsigned int> cases[] = {
        {"nvidia", "NVIDIA", kGreater},
        {"AMD", "Intel", kLess},
        {"Intel Arc", "Intel", kGreater},
        {"\x80", "z", kGreater},
        {"NVIDIA", "NVIDIA", kEqual},
        {"", nullptr, kEqual},  // no text counts as the empty one
        {nullptr, "", 0}};
    for (const auto& [actual, value, holding] : cases) {
        EXPECT_EQ(Holding<const char*>(actual, value, &Item::SetAsString, &Item::CheckAsString), holding)
            << (actual != nullptr ? actual : "null");
    }
}

TEST(D3d9AdapterCheckItem, AnIdentifierHasNoOrder) {
    EXPECT_EQ(Holding<GUID>(kGuid, kGuid, &Item::SetAsGUID, &Item::CheckAsGUID), 0x01U);
    EXPECT_EQ(Holding<GUID>(kGuid, kOtherGuid, &Item::SetAsGUID, &Item::CheckAsGUID), 0x02U);
}

TEST(D3d9AdapterCheckItem, LongTextIsCutAt127Bytes) {
    const std::string tooLong(128, 'x');
    Item item;
    item.SetAsString(D3D9_ADAPTER_CHECK_VENDOR_NAME, D3D9_ADAPTER_COMPARE_EQUAL, tooLong.c_str());
    EXPECT_EQ(item.AsString(), tooLong.substr(1));
    item.SetAsString(D3D9_ADAPTER_CHECK_VENDOR_NAME, D3D9_ADAPTER_COMPARE_EQUAL, item.AsString() + 100);
    EXPECT_EQ(item.AsString(), tooLong.substr(101)) << "set from its own text";
}

// A getter or comparison of any other type must not see the operand.
TEST(D3d9AdapterCheckItem, AnotherTypeReadsAsZeroAndSatisfiesNothing) {
    const GUID zero{};
    const auto command = D3D9_ADAPTER_CHECK_CAPS3;
    const auto compare = D3D9_ADAPTER_COMPARE_NOT_EQUAL;
    Item items[8];
    EXPECT_TRUE(items[1].CheckType(D3D9_ADAPTER_PARAM_STRING) && items[1].CheckAsString("")) << "a new item";
    items[0].SetAsString(command, compare, "100 %s");
    items[1].SetAsInt32(command, compare, INT_MIN);
    items[2].SetAsDWORD(command, compare, 0xFFFFFFFF);
    items[3].SetAsUINT(command, compare, 0x80000000);
    items[4].SetAsInt64(command, compare, LLONG_MIN);
    items[5].SetAsFloat(command, compare, 1.5f);
    items[6].SetAsDouble(command, compare, -0.0000004);
    items[7].SetAsGUID(command, compare, kGuid);
    const char* const texts[] = {"100 %s",
                                 "-2147483648",
                                 "-1",
                                 "-2147483648",
                                 "-9223372036854775808",
                                 "1.500000",
                                 "-0.000000",
                                 "{ABCDEF01-2345-6789-0A01-0203040506FF}"};
    for (int type = 0; type < 8; ++type) {
        Item item;
        item = Item(items[type]);
        EXPECT_EQ(item.GetType(), type);
        EXPECT_EQ(item.GetCommand(), command);
        EXPECT_EQ(item.ValueToString(), texts[type]);
        EXPECT_STREQ(item.AsString(), type == 0 ? "100 %s" : "");
        EXPECT_EQ(item.AsInt32(), type == 1 ? INT_MIN : 0);
        EXPECT_EQ(item.AsDWORD(), type == 2 ? 0xFFFFFFFF : 0);
        EXPECT_EQ(item.AsUINT(), type == 3 ? 0x80000000 : 0);
        EXPECT_EQ(item.AsInt64(), type == 4 ? LLONG_MIN : 0);
        EXPECT_EQ(item.AsFloat(), type == 5 ? 1.5f : 0);
        EXPECT_EQ(item.AsDouble(), type == 6 ? -0.0000004 : 0);
        const GUID guid = item.AsGUID();
        EXPECT_EQ(std::memcmp(&guid, type == 7 ? &kGuid : &zero, sizeof guid), 0);
        const bool satisfied[] = {item.CheckAsString("b"), item.CheckAsInt32(2),        item.CheckAsDWORD(2),
                                  item.CheckAsUINT(2),     item.CheckAsInt64(2),        item.CheckAsFloat(2),
                                  item.CheckAsDouble(2),   item.CheckAsGUID(kOtherGuid)};
        for (int i = 0; i < 8; ++i) {
            EXPECT_EQ(satisfied[i], i == type) << i << " of an item of type " << type;
        }
    }
    items[6].SetAsDouble(command, compare, 1e300);
    EXPECT_EQ(items[6].ValueToString().size(), 255U);
}

}  // namespace
}  // namespace velm
