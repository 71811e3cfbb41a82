#include "dbapi/db_curves.h"

#include "tests/support/lab_database.h"

#include <cmath>

namespace {
using namespace test_support;

dbif::SetupColumn input(const std::string& name, const std::vector<double>& numbers)
{
    dbif::SetupColumn column = sweep(name, numbers);
    column.isInput = true;
    return column;
}

/// Each curve as "parameters: x,y x,y;"; parameters without a value are left out.
std::string drawn(const dbapi::CurveSet& set)
{
    std::string text;
    for (const dbapi::Curve& curve : set.curves) {
        for (std::size_t i = 0; i < set.parameters.size(); ++i) {
            const std::string& name = set.parameters[i].name;
            if (!curve.parameters[i].empty() && (name == "$SETNAME" || name.front() != '$')) {
                text += name + "=" + curve.parameters[i] + " ";
            }
        }
        text += ":";
        for (std::size_t point = 0; point < curve.x.size(); ++point) {
            text += " " + std::to_string(std::lround(curve.x[point])) + "," +
                    std::to_string(std::lround(curve.y[point]));
        }
        text += ";";
    }
    return text;
}

class DbCurves : public testing::TestWithParam<Engine>
{
protected:
    DbCurves()
    {
        const double none = std::nan("");
        lab.write([&](dbif::RecordWriter& writer) {
            const int entry = writer.addCatalogEntry({});
            const int device = writer.findOrAddDevice(
                writer.findOrAddDie({.lot = "C"}), {.name = "m"},
                {number_key("W", 3, "PHYSICAL"), text_key("kind", "n", "TECHNOLOGY")});
            const int measurement = writer.addMeasurement({entry, device, 0, 25, {}});
            const int condition = writer.addCondition(measurement, {});
            const auto add = [&](const char* name, const std::vector<dbif::SetupColumn>& columns) {
                writer.addSetup(condition, {.name = name}, columns, name);
            };
            // g up and down again under two d; d over two g; both together.
            add("over g", {input("g", {1, 2, 1, 1, 2, 1}), input("d", {5, 5, 5, 8, 8, 8}),
                           sweep("i", {10, 20, 11, 30, 40, 31})});
            add("over d", {input("g", {1, 1, 1, 2, 2, 2}), input("d", {5, 6, 7, 5, 6, 7}),
                           sweep("i", {1, 2, 3, 4, 5, 6})});
            add("both", {input("g", {1, 2, 3}), input("d", {1, 2, 3}), sweep("i", {7, none, 9})});
            add("s", {input("f", {1, 2}), text_sweep("t", {"b", "a"})});
        });
    }

    std::string curves(const std::vector<std::string>& keywords, const std::string& query)
    {
        const bool isRead = dbapi::db_get_curves("lab", keywords, &set, query, &errors);
        return isRead ? drawn(set) : errors;
    }

    LabDatabase lab{GetParam()};
    dbapi::CurveSet set;
    std::string errors;
};

TEST_P(DbCurves, AreTheSweepsOfEachSetup)
{
    const std::string overG = "d=5 $SETNAME=over g : 1,10 2,20 1,11;"
                              "d=8 $SETNAME=over g : 1,30 2,40 1,31;";
    EXPECT_EQ(curves({"g", "i"}, ""), overG + "$SETNAME=both : 1,7 3,9;");
    EXPECT_EQ(set.setupsLeftOut, 1U);
    EXPECT_TRUE(set.isSwept);
    // A keyword between names the curves, whether or not it was an input already.
    EXPECT_EQ(
        curves({"g", "W", "d", "i"}, "$SETNAME=over g;d=8"),
        "W=3 d=8 $SETNAME=over g : 1,30 2,40 1,31;");
    EXPECT_EQ(
        curves({"g", "i"}, "$SETNAME=over d"),
        "d=5 $SETNAME=over d : 1,1 2,4;d=6 $SETNAME=over d : 1,2 2,5;"
        "d=7 $SETNAME=over d : 1,3 2,6;");
    EXPECT_EQ(
        curves({"i", "d"}, "$SETNAME=over d"),
        "g=1 $SETNAME=over d : 1,5 2,6 3,7;g=2 $SETNAME=over d : 4,5 5,6 6,7;");
    EXPECT_EQ(curves({"g", "i"}, "$LOT=A"), "");
}

TEST_P(DbCurves, JoinRecordsAndPoints)
{
    EXPECT_EQ(curves({"W", "$TEMP"}, "$LOT=C"), ": 3,25;");
    EXPECT_FALSE(set.isSwept);
    EXPECT_EQ(curves({"W", "i"}, "$SETNAME=both"), "g=1 d=1 : 3,7;g=3 d=3 : 3,9;");
    EXPECT_EQ(curves({"kind", "i"}, "g=2;d=8"), "g=2 d=8 : 0,40;");
    EXPECT_EQ(set.x.labels, std::vector<std::string>{"n"});
    EXPECT_EQ(curves({"t", "f"}, ""), "$SETNAME=s : 1,1 0,2;");
    EXPECT_EQ(set.x.labels, (std::vector<std::string>{"a", "b"}));
    EXPECT_TRUE(curves({"f", "t"}, "").starts_with("Error: The keyword \"t\" holds texts"));
    EXPECT_TRUE(curves({"f", "nokey"}, "").starts_with("Error: Failed to resolve keywords"));
    EXPECT_TRUE(curves({"f"}, "").starts_with("Error: A curve needs two keywords"));

    dbapi::ValueSample sample;
    ASSERT_TRUE(dbapi::db_get_value_sample("lab", "i", &sample, "$SETNAME=both", &errors));
    EXPECT_EQ(sample.values.size(), 2U);
    EXPECT_TRUE(sample.isOfPoints);
    ASSERT_TRUE(dbapi::db_get_value_sample("lab", "$DEVNAME", &sample, "W=5u,10u", &errors));
    EXPECT_EQ(sample.axis.labels, (std::vector<std::string>{"n1", "n2"}));
    EXPECT_FALSE(sample.isOfPoints);
}

INSTANTIATE_ON_ENGINES(DbCurves);
} // namespace
