#pragma once

#include "audio/rt/Node.h"

#include <vector>

namespace quorel::rt {

/// The wiring of the nodes. A node has at most one input and one output here; what is attached but
/// not connected to the end takes no part. One format holds for the whole graph: the source worker
/// brings every file to it before its frames enter.
///
/// Attaching, connecting and preparing belong to the control thread, while the graph is stopped.
class Graph {
  public:
    /// Nodes are referred to, not owned, and must outlive the graph.
    void attach(Node& node);
    /// Leads `from`'s output to `to`'s input; both must be attached and free there.
    void connect(Node& from, Node& to);
    /// Frees `from`'s output.
    void disconnect(Node& from);

    /// Prepares every attached node and compiles the path that ends at `end` into a flat list.
    void prepare(const Format& format, const Node& end);

    void start() { running_ = true; }
    void stop() { running_ = false; }
    bool isRunning() const { return running_; }

    /// The compiled path, first node first.
    const std::vector<Node*>& path() const { return path_; }
    /// Frames by which the end of the path lags behind its start.
    int latencyFrames() const { return latencyFrames_; }

    /// Rendering thread: runs a block through the path.
    void process(Block& block) noexcept;

  private:
    struct Place {
        Node* node;
        Node* input = nullptr;
    };
    Place& place(const Node& node);

    std::vector<Place> places_;
    std::vector<Node*> path_;
    int latencyFrames_ = 0;
    bool running_ = false;
};

} // namespace quorel::rt
