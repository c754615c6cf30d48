#include "audio/rt/Graph.h"

#include <algorithm>
#include <cassert>

namespace quorel::rt {

void Graph::attach(Node& node) {
    assert(!running_);
    places_.push_back({&node});
}

Graph::Place& Graph::place(const Node& node) {
    const auto found = std::ranges::find(places_, &node, &Place::node);
    assert(found != places_.end());
    return *found;
}

void Graph::connect(Node& from, Node& to) {
    assert(!running_);
    assert(std::ranges::none_of(places_, [&](const Place& p) { return p.input == &from; }));
    Place& target = place(to);
    assert(!target.input);
    target.input = place(from).node;
}

void Graph::disconnect(Node& from) {
    assert(!running_);
    for (Place& other : places_) {
        if (other.input == &from) {
            other.input = nullptr;
        }
    }
}

void Graph::prepare(const Format& format, const Node& end) {
    assert(!running_);
    for (const Place& attached : places_) {
        attached.node->prepare(format);
    }
    path_.clear();
    latencyFrames_ = 0;
    for (const Place* at = &place(end);; at = &place(*at->input)) {
        path_.push_back(at->node);
        latencyFrames_ += at->node->latencyFrames();
        if (!at->input) {
            break;
        }
    }
    std::ranges::reverse(path_);
}

void Graph::process(Block& block) noexcept {
    for (Node* node : path_) {
        node->process(block);
    }
}

} // namespace quorel::rt
