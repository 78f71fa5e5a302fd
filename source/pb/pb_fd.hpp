// pb::Fd: the one owner of a file descriptor, or of none. Whoever opens a descriptor asks for close-on-exec in the same
// call (O_CLOEXEC, SOCK_CLOEXEC, MSG_CMSG_CLOEXEC), since a later fcntl would leave a gap for another thread's fork.
// In-tree only.
#ifndef PB_FD_HPP
#define PB_FD_HPP

#include <unistd.h>
#include <utility>

namespace pb {

class Fd {
public:
    Fd() noexcept = default;
    // Takes the descriptor over; -1, what a failed system call returns, is none.
    explicit Fd( int descriptor ) noexcept : descriptor_( descriptor ) {}
    Fd( Fd &&other ) noexcept : descriptor_( other.release() ) {}
    Fd &operator=( Fd &&other ) noexcept
    {
        reset( other.release() );
        return *this;
    }
    ~Fd() { reset(); }

    int get() const noexcept { return descriptor_; }
    explicit operator bool() const noexcept { return descriptor_ >= 0; }
    [[nodiscard]] int release() noexcept { return std::exchange( descriptor_, -1 ); }
    // Linux frees the number even when close reports an error, and a second close could hit a new owner: never retried.
    void reset( int descriptor = -1 ) noexcept
    {
        const int old = std::exchange( descriptor_, descriptor );
        if ( old >= 0 )
            (void)::close( old );
    }

private:
    int descriptor_ = -1;
};

} // namespace pb

#endif
