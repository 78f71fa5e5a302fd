// Bounded reading of bytes from front to back, inline: what pbDecoder wraps, for code on the path of every message.
// In-tree only.
#ifndef PB_DECODER_HPP
#define PB_DECODER_HPP

#include "pb/pb_base.h"

#include <cstring>

namespace pb {

// Does not own the bytes. A read that the rest cannot satisfy returns false and does not move.
class ByteReader {
  public:
    ByteReader( const uint8_t *bytes, pbInt size ) : bytes_( bytes ), size_( size ) {}

    pbInt size() const { return size_; }
    pbInt offset() const { return offset_; }
    pbInt remaining() const { return size_ - offset_; }
    const uint8_t *bytes() const { return bytes_ + offset_; } // the rest

    bool trySkip( pbInt count )
    {
        if ( count > remaining() )
            return false;
        offset_ += count;
        return true;
    }
    bool tryRead( uint8_t *bytes, pbInt count )
    {
        const uint8_t *source = this->bytes();
        if ( !trySkip( count ) )
            return false;
        if ( count )
            std::memcpy( bytes, source, static_cast<size_t>( count ) );
        return true;
    }

  private:
    const uint8_t *bytes_;
    pbInt size_;
    pbInt offset_ = 0;
};

} // namespace pb

#endif
