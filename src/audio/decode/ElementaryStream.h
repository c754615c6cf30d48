#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace quorel {

/// What an ES_Descriptor (ISO/IEC 14496-1, 7.2.6.5) says about its codec.
struct ElementaryStream {
    int objectType = 0;            ///< which codec; 0 where it says nothing
    std::vector<std::byte> config; ///< the codec's own part
};

ElementaryStream readElementaryStream(std::span<const std::byte> descriptor);

} // namespace quorel
