// The names of one message while it is decoded: reads a name and remembers every suffix of it that later names may
// point at (RFC 1035, 4.1.4). In-tree only.
#ifndef IN_DNS_NAME_TABLE_HPP
#define IN_DNS_NAME_TABLE_HPP

#include "in/dns/in_dns_name.hpp"
#include "pb/pb_decoder.hpp"

#include <array>
#include <cstddef>
#include <memory_resource>
#include <optional>
#include <vector>

namespace in::dns {

// A suffix is its first label and the suffix behind it, so that however many names end alike, each label is read, checked
// and kept once. The text of a suffix is made when a name first consists of it, and then shared.
class NameTable {
public:
    explicit NameTable( const struct pbBuffer *message );
    NameTable( const NameTable & ) = delete;
    NameTable &operator=( const NameTable & ) = delete;

    // Reads a name; an absent one is the root. False when it is malformed or no valid domain name.
    bool tryRead( pb::ByteReader &reader, Name &name );

private:
    using Index = uint32_t;
    static constexpr Index none = 0; // no suffix starts there
    static constexpr Index root = 1;
    static constexpr Index firstSuffix = 2;

    struct Suffix {
        uint32_t offset; // of the length byte of the first label
        uint32_t length; // of the text
        Index rest;      // behind the first label
        uint32_t text;   // of the first label: its place in texts_, counted from 1; 0 when the bytes are it
        bool ascii;      // the whole text
        Name name;       // once it was asked for
    };

    static constexpr size_t pointable = 0x4000; // offsets that a pointer of 14 bits reaches
    static constexpr size_t usual = 48;         // suffixes in a message; more take memory from the heap

    // What ends a name, and where.
    struct End {
        uint32_t offset;
        Index rest; // the root, or what a pointer leads to
    };

    std::optional<End> readLabels( pb::ByteReader &reader );
    Index readEnd( pb::ByteReader &reader ) const;
    bool appendLabel( uint32_t offset, size_t length, bool &mayPrecede, bool &mayBeLast );
    Index complete( size_t first, End end );
    void remember( uint32_t offset, Index suffix );
    const Name &nameOf( Index index );
    pb::String asciiText( const Suffix &suffix ) const;
    pb::String text( const Suffix &suffix ) const;

    Suffix &at( Index index ) { return suffixes_[index - firstSuffix]; }
    const Suffix &at( Index index ) const { return suffixes_[index - firstSuffix]; }

    const Name root_;
    const struct pbBuffer *const message_;
    const uint8_t *const bytes_;
    const uint8_t *const end_;
    alignas( Suffix ) std::array<std::byte, usual * sizeof( Suffix )> room_;
    std::pmr::monotonic_buffer_resource memory_{ room_.data(), room_.size() };
    std::pmr::vector<Suffix> suffixes_{ &memory_ };
    std::vector<pb::String> texts_;
    uint16_t at_[pointable]; // the suffix that starts at an offset of the message; only as many as it has bytes
};

} // namespace in::dns

#endif
