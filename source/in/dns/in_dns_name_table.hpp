// The names of one message while it is decoded: reads a name and remembers every suffix of it that later names may
// point at (RFC 1035, 4.1.4). In-tree only.
#ifndef IN_DNS_NAME_TABLE_HPP
#define IN_DNS_NAME_TABLE_HPP

#include "in/dns/in_dns_name.hpp"
#include "pb/pb_decoder.hpp"

#include <cstddef>
#include <memory>
#include <vector>

namespace in::dns {

// A suffix is its first label and the suffix behind it, so that however many names end alike, each label is read,
// checked and kept once. The text of a suffix is made when a name first consists of it, and then shared.
class NameTable {
  public:
    explicit NameTable( const struct pbBuffer *message );
    ~NameTable();
    NameTable( const NameTable & ) = delete;
    NameTable &operator=( const NameTable & ) = delete;

    // Reads a name into a place that must outlive the table; an absent name is the root. False when it is malformed or
    // no valid domain name: nothing more must be read then. A name that is not kept as text must not be looked at before
    // the table has gone.
    bool tryRead( pb::ByteReader &reader, Name &name );

  private:
    using Index = MessageNames::Index;
    using Suffix = MessageNames::Suffix;
    static constexpr Index none = MessageNames::none; // no suffix starts there
    static constexpr Index root = MessageNames::root;
    static constexpr Index firstSuffix = MessageNames::firstSuffix;

    static constexpr size_t pointable = 0x4000; // offsets that a pointer of 14 bits reaches
    static constexpr size_t usual = 48;         // suffixes in a message; more take memory from the heap

    // Where a label may stand in a name.
    struct Places {
        bool mayPrecede, mayBeLast;
    };

    Index readEnd( const uint8_t *&position, const uint8_t *limit, Places last ) const;
    bool appendLabel( const uint8_t *lengthByte, Places &places );
    bool appendSpecialLabel( Suffix &suffix, Places &places );
    Index complete( size_t first, Index rest, uint32_t endOffset );
    void remember( uint32_t offset, Index suffix );
    void assign( Name &name, Index index );
    Name longName( Index index );
    Suffix &append( const Suffix &suffix );
    void grow();
    pb::String asciiText( const Suffix &suffix ) const;
    pb::String text( const Suffix &suffix ) const;

    uint32_t offsetOf( const uint8_t *position ) const { return static_cast<uint32_t>( position - bytes_ ); }
    Suffix &at( Index index ) { return suffixes_[index - firstSuffix]; }
    const Suffix &at( Index index ) const { return suffixes_[index - firstSuffix]; }

    const struct pbBuffer *const message_;
    const uint8_t *const bytes_;
    const uint8_t *const end_;
    Suffix few_[usual];
    std::unique_ptr<Suffix[]> many_; // in place of few_
    Suffix *suffixes_ = few_;
    size_t count_ = 0;
    size_t room_ = usual;
    std::vector<pb::String> texts_;
    pb::Ref<MessageNames> longNames_; // null while there is none; they get the suffixes in the end
    uint16_t at_[pointable]; // the suffix that starts at an offset of the message; only as many as it has bytes
};

} // namespace in::dns

#endif
