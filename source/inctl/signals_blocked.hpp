// SignalsBlocked: while it lives, threads that this one starts take no signals; they are the main thread's.
#ifndef INCTL_SIGNALS_BLOCKED_HPP
#define INCTL_SIGNALS_BLOCKED_HPP

#include <csignal>

namespace inctl {

class SignalsBlocked {
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset( &all );
        (void)pthread_sigmask( SIG_SETMASK, &all, &before_ ); // fails for a wrong first argument only
    }
    ~SignalsBlocked() { (void)pthread_sigmask( SIG_SETMASK, &before_, nullptr ); }
    SignalsBlocked( const SignalsBlocked & ) = delete;
    SignalsBlocked &operator=( const SignalsBlocked & ) = delete;

private:
    sigset_t before_;
};

} // namespace inctl

#endif
