#pragma once

#include "audio/rt/Format.h"

namespace quorel::rt {

/// The frames that travel through the graph: pairs of channels, each pair interleaved
/// (left, right, left, ...), so that a stereo stream is one pair and needs no shuffling. An odd
/// last channel fills both lanes of its pair with the same samples. 32-bit float, full scale +-1.
struct Block {
    std::array<float*, kMaxPairs> pair{};
    int pairs = 0;
    int frames = 0; ///< 0..kMaxBlockFrames
};

/// One processing unit of the graph.
///
/// `prepare` belongs to the control thread and may allocate; it is never called while the graph is
/// rendering. Everything marked noexcept belongs to the rendering thread: it is bounded and neither
/// waits, allocates, logs nor touches files. Splitting a stream into blocks differently never
/// changes what a node puts out.
class Node {
  public:
    Node() = default;
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    virtual ~Node() = default;

    /// Readies the node for a format and puts it into its state after reset().
    virtual void prepare(const Format& format) = 0;

    /// Processes a block in place.
    virtual void process(Block& block) noexcept = 0;

    /// Forgets the signal heard so far and finishes running ramps at their targets, as before the
    /// first frame of an unrelated stream.
    virtual void reset() noexcept = 0;

    /// Frames by which the output lags behind the input. Constant between two calls of prepare.
    virtual int latencyFrames() const noexcept { return 0; }
};

} // namespace quorel::rt
