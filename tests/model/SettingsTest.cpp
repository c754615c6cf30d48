#include "model/AppSettings.h"

#include <gmock/gmock.h>

using namespace quorel;
using testing::ElementsAre;

TEST(Enumerations, listTheirCasesInOrderAndKnowThemByRawValue) {
    EXPECT_THAT(kAllCases<VisualizationMode>,
                ElementsAre(VisualizationMode::Spectrum, VisualizationMode::Scope,
                            VisualizationMode::Vu, VisualizationMode::Led, VisualizationMode::Off));
    EXPECT_EQ(kAllCases<PlaybackMode>.back(), PlaybackMode::All);
    EXPECT_EQ(kAllCases<CompressorPreset>.back(), CompressorPreset::Maximum);
    EXPECT_EQ(kAllCases<LoudnessStrength>.back(), LoudnessStrength::Strong);
    EXPECT_EQ(kAllCases<CharacterFX>.back(), CharacterFX::Tape);
    EXPECT_EQ(kAllCases<TapeType>.back(), TapeType::Metal);
    EXPECT_EQ(rawValue(PlaybackMode::StopAfter), "stopAfter");
    EXPECT_EQ(fromRawValue<CompressorPreset>("punch"), CompressorPreset::Punch);
    EXPECT_EQ(fromRawValue<PlaybackMode>("repeat"), std::nullopt);
    EXPECT_EQ(fromRawValue<PlaybackMode>("Normal"), std::nullopt);
    EXPECT_EQ(displayLabel(LoudnessStrength::Medium), "Medium");
}

TEST(EqPresets, areFoundByNameAndNoneBoostsBeyondSevenDecibels) {
    ASSERT_NE(findEqPreset(u"rock"), nullptr);
    EXPECT_THAT(findEqPreset(u"rock")->gains, ElementsAre(5, 4, 3, 1, -1, -1, 1, 3, 4, 5));
    EXPECT_THAT(findEqPreset(u"vocal")->gains, ElementsAre(-2, -1, 0, 2, 4, 4, 3, 1, 0, -1));
    EXPECT_EQ(findEqPreset(u"Rock"), nullptr);
    for (const EqPreset& preset : kEqPresets)
        EXPECT_THAT(preset.gains, testing::Each(testing::AllOf(testing::Ge(-2), testing::Le(7))));
    EXPECT_NE(findEqPreset(AppSettings().eqPreset), nullptr);
}
