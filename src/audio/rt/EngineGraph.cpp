#include "audio/rt/EngineGraph.h"

namespace quorel::rt {

EngineGraph::EngineGraph() {
    for (Node* node : std::initializer_list<Node*>{
             &player, &noisePlayer, &mechPlayer, &preMix, &outputGain, &varispeed, &normUnit,
             &charEQ, &eq, &comp, &limiter, &loudEQ, &meterTap, &mainMixer}) {
        graph.attach(*node);
    }
    using enum FilterType;
    normUnit.setBand(0, {.type = Parametric, .frequencyHz = 1000, .bandwidthOctaves = 2.0});

    static constexpr double eqFrequencies[kEqBands] = {31,   62,   125,  250,  500,
                                                       1000, 2000, 4000, 8000, 16000};
    for (int band = 0; band < kEqBands; ++band) {
        const FilterType type = band == 0              ? LowShelf
                                : band == kEqBands - 1 ? HighShelf
                                                       : Parametric;
        eq.setBand(band,
                   {.type = type, .frequencyHz = eqFrequencies[band], .bandwidthOctaves = 1.0});
    }
    charEQ.setBand(0, {.type = HighPass, .frequencyHz = 30});
    charEQ.setBand(1, {.type = LowPass, .frequencyHz = 20000});
    charEQ.setBand(2, {.type = LowShelf, .frequencyHz = 70});
    loudEQ.setBand(0, {.type = LowShelf, .frequencyHz = 100});
    loudEQ.setBand(1, {.type = HighShelf, .frequencyHz = 8000});

    graph.connect(player, preMix);
    graph.connect(preMix, normUnit);
    graph.connect(normUnit, eq);
    graph.connect(eq, comp);
    graph.connect(comp, loudEQ);
    graph.connect(loudEQ, limiter);
    graph.connect(limiter, meterTap);
    graph.connect(meterTap, outputGain);
    graph.connect(outputGain, mainMixer);

    normUnit.setBypass(true);
    charEQ.setBypass(true);
    eq.setBypass(true);
    loudEQ.setBypass(true);
    comp.setBypass(true);
    limiter.setPreGain(-0.8F);
}

} // namespace quorel::rt
