#include "velm/D3d9AdapterCheckItem.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstring>
#include <sstream>

namespace velm::d3d9_adapter_check_item_test {

using Item = D3d9AdapterCheckItem;

constexpr GUID kGuid = {0xABCDEF01, 0x2345, 0x6789, {0x0A, 1, 2, 3, 4, 5, 6, 0xFF}};
constexpr GUID kOtherGuid = {0xABCDEF01, 0x2345, 0x6789, {0x0A, 1, 2, 3, 4, 5, 6, 0xFE}};

/// The operators, of -1 to 9, for which a rule with this operand holds for a fact; one bit each.
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

// The operators, without the bit tests, that hold when the fact is less than, equal to or greater than the
// operand.
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
    EXPECT_EQ(Holding<T>(0x21, 0x20, set, check), kGreater | kAny);
    EXPECT_EQ(Holding<T>(0x01, 0x20, set, check), kLess | kNoneSet);
    EXPECT_EQ(Holding<T>(0, 0, set, check), kEqual | kNoneSet);
}

TEST(D3d9AdapterCheckItem, ComparesIntegersBySignAndWidth) {
    ExpectIntegers<int>(&Item::SetAsInt32, &Item::CheckAsInt32, INT_MIN, 1, kNoneSet);
    ExpectIntegers<DWORD>(&Item::SetAsDWORD, &Item::CheckAsDWORD, 1, 0xFFFFFFFF, kAny);
    ExpectIntegers<unsigned int>(&Item::SetAsUINT, &Item::CheckAsUINT, 1, 0x80000000, kNoneSet);
    ExpectIntegers<long long>(&Item::SetAsInt64, &Item::CheckAsInt64, LLONG_MIN, LLONG_MIN + (1LL << 32),
                              kAny);
}

TEST(D3d9AdapterCheckItem, OnlyNotEqualHoldsForNaN) {
    const float nan = std::nanf("");
    const struct {
        float actual, value;
        unsigned int holding;
    } rows[] = {{-0.0f, 0.0f, kEqual},          {1.5f, std::nextafter(1.5f, 2.0f), kLess},
                {HUGE_VALF, FLT_MAX, kGreater}, {nan, 1.5f, kUnordered},
                {1.5f, nan, kUnordered},        {nan, nan, kUnordered}};
    for (const auto& [actual, value, holding] : rows) {
        EXPECT_EQ(Holding<float>(actual, value, &Item::SetAsFloat, &Item::CheckAsFloat), holding) << actual;
        EXPECT_EQ(Holding<double>(actual, value, &Item::SetAsDouble, &Item::CheckAsDouble), holding)
            << actual;
    }
    EXPECT_EQ(Holding<double>(1.0, 1.0 + DBL_EPSILON, &Item::SetAsDouble, &Item::CheckAsDouble), kLess);
}

TEST(D3d9AdapterCheckItem, ComparesTextAsUnsignedBytes) {
    const struct {
        const char *actual, *value;
        unsigned int holding;
    } rows[] = {{"AMD", "Intel", kLess},
                {"Intel Arc", "Intel", kGreater},
                {"\x80", "z", kGreater},
                {"", nullptr, kEqual},  // null counts as empty
                {nullptr, "", 0}};
    for (const auto& [actual, value, holding] : rows) {
        EXPECT_EQ(Holding<const char*>(actual, value, &Item::SetAsString, &Item::CheckAsString), holding)
            << (actual != nullptr ? actual : "null");
    }
    EXPECT_EQ(Holding<GUID>(kGuid, kGuid, &Item::SetAsGUID, &Item::CheckAsGUID), 0x01U)
        << "GUIDs have no order";
    EXPECT_EQ(Holding<GUID>(kGuid, kOtherGuid, &Item::SetAsGUID, &Item::CheckAsGUID), 0x02U);
}

TEST(D3d9AdapterCheckItem, CutsLongTextAt127Bytes) {
    const std::string tooLong(128, 'x');
    Item item;
    item.SetAsString(D3D9_ADAPTER_CHECK_VENDOR_NAME, D3D9_ADAPTER_COMPARE_EQUAL, tooLong.c_str());
    EXPECT_EQ(item.AsString(), tooLong.substr(1));
    item.SetAsString(D3D9_ADAPTER_CHECK_VENDOR_NAME, D3D9_ADAPTER_COMPARE_EQUAL, item.AsString() + 100);
    EXPECT_EQ(item.AsString(), tooLong.substr(101)) << "set from its own text";
}

/// The type, the text, all getters and all comparisons of an item.
std::string ReadAll(Item item) {
    const GUID guid = item.AsGUID();
    std::ostringstream all;
    all << item.GetType() << ' ' << item.ValueToString() << ": " << item.AsString() << ' ' << item.AsInt32()
        << ' ' << item.AsDWORD() << ' ' << item.AsUINT() << ' ' << item.AsInt64() << ' ' << item.AsFloat()
        << ' ' << item.AsDouble() << ' ' << guid.Data1 << '-' << int{guid.Data4[7]} << ' '
        << item.CheckAsString("b") << item.CheckAsInt32(2) << item.CheckAsDWORD(2) << item.CheckAsUINT(2)
        << item.CheckAsInt64(2) << item.CheckAsFloat(2) << item.CheckAsDouble(2)
        << item.CheckAsGUID(kOtherGuid);
    return all.str();
}

TEST(D3d9AdapterCheckItem, ReadsOtherTypesAsZero) {
    const auto command = D3D9_ADAPTER_CHECK_CAPS3;
    const auto compare = D3D9_ADAPTER_COMPARE_NOT_EQUAL;
    Item items[9];
    items[1].SetAsString(command, compare, "100 %s");
    items[2].SetAsInt32(command, compare, INT_MIN);
    items[3].SetAsDWORD(command, compare, 0xFFFFFFFF);
    items[4].SetAsUINT(command, compare, 0x80000000);
    items[5].SetAsInt64(command, compare, LLONG_MIN);
    items[6].SetAsFloat(command, compare, 1.5f);
    items[7].SetAsDouble(command, compare, -0.0000004);
    items[8].SetAsGUID(command, compare, kGuid);
    const char* const expected[] = {
        "0 :  0 0 0 0 0 0 0-0 00000000",
        "0 100 %s: 100 %s 0 0 0 0 0 0 0-0 10000000",
        "1 -2147483648:  -2147483648 0 0 0 0 0 0-0 01000000",
        "2 -1:  0 4294967295 0 0 0 0 0-0 00100000",
        "3 -2147483648:  0 0 2147483648 0 0 0 0-0 00010000",
        "4 -9223372036854775808:  0 0 0 -9223372036854775808 0 0 0-0 00001000",
        "5 1.500000:  0 0 0 0 1.5 0 0-0 00000100",
        "6 -0.000000:  0 0 0 0 0 -4e-07 0-0 00000010",
        "7 {ABCDEF01-2345-6789-0A01-0203040506FF}:  0 0 0 0 0 0 2882400001-255 00000001",
    };
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(ReadAll(items[i]), expected[i]);
    }
    EXPECT_TRUE(items[0].CheckAsString("")) << "a new item";
    EXPECT_EQ(items[8].GetCommand(), command);
    EXPECT_EQ(items[8].GetCompare(), compare);
    items[7].SetAsDouble(command, compare, 1e300);
    EXPECT_EQ(items[7].ValueToString().size(), 255U);
}

}  // namespace velm::d3d9_adapter_check_item_test
