// A domain name as the DNS values hold it: a string, or, for a name far longer than DNS allows, the place in a message
// from which its text is made whenever it is asked for. In-tree only.
#ifndef IN_DNS_NAME_HPP
#define IN_DNS_NAME_HPP

#include "in/dns/in_dns_message_names.hpp"

namespace in::dns {

class Name {
  public:
    // Names up to this many code points are kept as text. A few bytes that point at a name make another one of nearly
    // its length, so that a message of 64 KiB can hold half a gigabyte of longer ones.
    static constexpr size_t longestText = 1024;

    Name() = default; // the root
    Name( pb::String text ) : held_( pb::adopt( text ? pbStringObj( text.release() ) : nullptr ) ) {}
    Name( const struct pbString *text ) : Name( pb::share( text ) ) {}

    // The name that consists of a suffix.
    static Name inMessage( pb::Ref<MessageNames> names, MessageNames::Index suffix );

    explicit operator bool() const { return static_cast<bool>( held_ ); }
    size_t length() const; // of the text, in code points; costs nothing
    pb::String text() const; // null for the root
    // For people to read: of a name that is not kept as text its first code points, that many.
    pb::String shownText() const;

    // By text, the root first.
    friend std::strong_ordering operator<=>( const Name &a, const Name &b );
    friend bool operator==( const Name &a, const Name &b ) { return ( a <=> b ) == 0; }
    // Finds equal names among many without looking into the long ones again and again. Those that are kept as text are
    // ordered by it, the others come behind, by length and hash: two that are neither less nor greater may differ.
    class Rank {
      public:
        Rank( const Name &name, uint64_t seed );
        std::weak_ordering operator<=>( const Rank &other ) const;

      private:
        const Name &name_;
        const size_t length_;
        const uint64_t hash_; // of a name that is not kept as text
    };

  private:
    bool isLong() const { return held_ && held_->sort != pbStringSort(); }
    static std::strong_ordering compareLong( const Name &a, const Name &b );

    pb::Ref<struct pbObj> held_;
};

} // namespace in::dns

#endif
