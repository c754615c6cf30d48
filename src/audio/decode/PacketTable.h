#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorel {

struct Packet {
    int64_t offset = 0; ///< in the file
    uint32_t bytes = 0;
    int64_t start = 0; ///< in ticks of the table's clock
    int64_t end = 0;
};

/// Where each packet of a stream lies and when it sounds, in about 4 bytes a packet. Packets are
/// added in the order of their times, which only grow.
class PacketTable {
  public:
    /// Takes no more packets than the file has bytes, whatever it says of them.
    explicit PacketTable(int64_t fileBytes);

    /// Makes room, for as many as the table takes.
    void reserve(uint64_t packets);

    /// False when the table is full; the packet is then not in it.
    bool add(int64_t offset, uint32_t bytes, uint32_t ticks);

    /// The next packet starts at `time`; ignored when that lies in the past.
    void advanceTo(int64_t time);

    /// Lets every packet last that long, one after the other, whatever was said before.
    void retime(uint32_t ticks);

    std::size_t size() const { return sizes_.size(); }
    int64_t end() const { return end_; }     ///< of the last packet, in ticks
    int64_t bytes() const { return bytes_; } ///< of all packets

    Packet at(std::size_t index) const;

    /// The last packet that starts at `time` or before; the first where none does.
    std::size_t indexAt(int64_t time) const;

  private:
    struct Piece { // packets that lie one behind the other
        int64_t offset;
        uint32_t first;
    };
    struct Run { // packets of one duration that sound one after the other
        int64_t start;
        uint32_t first;
        uint32_t ticks;
    };

    uint64_t most_;
    std::vector<uint32_t> sizes_;
    std::vector<Piece> pieces_;
    std::vector<Run> runs_;
    int64_t nextOffset_ = -1;
    int64_t end_ = 0;
    int64_t bytes_ = 0;
};

} // namespace quorel
