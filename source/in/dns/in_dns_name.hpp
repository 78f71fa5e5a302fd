// A domain name as the DNS values hold it: a string, or, for a name far longer than DNS allows, the place in a message
// from which its text is made whenever it is asked for. In-tree only.
#ifndef IN_DNS_NAME_HPP
#define IN_DNS_NAME_HPP

#include "pb/pb_buffer.h"
#include "pb/pb_string.hpp"

namespace in::dns {

class Name {
  public:
    // Names up to this many code points are kept as text. A few bytes that point at a name make another one of nearly
    // its length, so that a message of 64 KiB can hold half a gigabyte of longer ones.
    static constexpr size_t longestText = 1024;

    Name() = default; // the root
    Name( pb::String text ) : held_( pb::adopt( text ? pbStringObj( text.release() ) : nullptr ) ) {}
    Name( const struct pbString *text ) : Name( pb::share( text ) ) {}

    // The name that starts at the offset of a message in which its labels and pointers were found valid.
    static Name inMessage( const struct pbBuffer *message, size_t offset );

    explicit operator bool() const { return static_cast<bool>( held_ ); }
    pb::String text() const; // null for the root

    // By text, the root first.
    friend std::strong_ordering operator<=>( const Name &a, const Name &b ) { return a.text() <=> b.text(); }
    friend bool operator==( const Name &a, const Name &b ) { return ( a <=> b ) == 0; }

  private:
    pb::Ref<struct pbObj> held_;
};

} // namespace in::dns

#endif
