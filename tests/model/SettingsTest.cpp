#include "model/AppSettings.h"

#include <gmock/gmock.h>

using namespace quorel;
using testing::ElementsAre;

TEST(Enumerations, areKnownByRawValue) {
    EXPECT_THAT(kAllCases<VisualizationMode>,
                ElementsAre(VisualizationMode::Spectrum, VisualizationMode::Scope,
                            VisualizationMode::Vu, VisualizationMode::Led, VisualizationMode::Off));
    EXPECT_EQ(rawValue(PlaybackMode::StopAfter), "stopAfter");
    EXPECT_EQ(fromRawValue<CompressorPreset>("punch"), CompressorPreset::Punch);
    EXPECT_EQ(fromRawValue<PlaybackMode>("Normal"), std::nullopt);
}

TEST(EqPresets, areFoundByName) {
    ASSERT_NE(findEqPreset(u"rock"), nullptr);
    EXPECT_THAT(findEqPreset(u"rock")->gains, ElementsAre(5, 4, 3, 1, -1, -1, 1, 3, 4, 5));
    EXPECT_EQ(findEqPreset(u"Rock"), nullptr);
    EXPECT_NE(findEqPreset(AppSettings().eqPreset), nullptr);
}
