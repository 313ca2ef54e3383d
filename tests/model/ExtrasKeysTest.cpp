// SPDX-License-Identifier: MIT

#include <Pelluvia/model/ExtrasKeys.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <string>

namespace pelluvia {
namespace {

struct NamedKey {
    Key key;
    std::string_view name;
};

const NamedKey allKeys[] = {
    {extras::count, "count"},
    {extras::name, "name"},
    {extras::description, "description"},
    {extras::author, "author"},
    {extras::index, "index"},
    {extras::courseIndex, "courseIndex"},
    {extras::routeNumber, "routeNumber"},
    {extras::comment, "comment"},
    {extras::symbol, "symbol"},
    {extras::type, "type"},
    {extras::url, "url"},
    {extras::urlName, "urlName"},
    {extras::geocacheOwner, "geocacheOwner"},
    {extras::difficulty, "difficulty"},
    {extras::terrain, "terrain"},
    {extras::geocacheType, "geocacheType"},
    {extras::geocacheHint, "geocacheHint"},
    {extras::proximity, "proximity"},
    {extras::hr, "hr"},
    {extras::cadence, "cadence"},
    {extras::temp, "temp"},
    {extras::distance, "distance"},
    {extras::sensor, "sensor"},
    {extras::speed, "speed"},
    {extras::calories, "calories"},
    {extras::trackNumber, "trackNumber"},
    {extras::trackIndex, "trackIndex"},
    {extras::trackEnd, "trackEnd"},
    {extras::hrMax, "hrMax"},
    {extras::hrAvg, "hrAvg"},
    {extras::cadenceMax, "cadenceMax"},
    {extras::cadenceAvg, "cadenceAvg"},
    {extras::totalTime, "totalTime"},
    {extras::speedMax, "speedMax"},
    {extras::speedAvg, "speedAvg"},
    {extras::powerAvg, "powerAvg"},
    {extras::powerMax, "powerMax"},
    {extras::altMin, "altMin"},
    {extras::altMax, "altMax"},
    {extras::trackName, "trackName"},
    {extras::trigger, "trigger"},
    {extras::intensity, "intensity"},
    {extras::point, "point"},
    {extras::points, "points"},
};

TEST(ExtrasKeys, EachConstantBearsItsName) {
    for (const NamedKey &each : allKeys) {
        EXPECT_EQ(each.key.name(), each.name);
        EXPECT_EQ(each.key, Key(each.name));
    }
}

TEST(ExtrasKeys, ThereAre44DifferentOnes) {
    std::set<std::string_view> names;
    for (const NamedKey &each : allKeys) {
        names.insert(each.key.name());
    }
    EXPECT_EQ(names.size(), 44U);
    EXPECT_EQ(std::size(allKeys), 44U);
}

} // namespace
} // namespace pelluvia
