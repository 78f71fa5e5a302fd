// The layout of in___NwInterfaceImp, for the files that change an interface. In-tree only.
#ifndef IN_NW_INTERFACE_IMP_LINUX_HPP
#define IN_NW_INTERFACE_IMP_LINUX_HPP

#include "in/nw/in_nw_interface_imp_linux_internal.h"
#include "in/nw/in_nw_interface_state.h"
#include "pb/pb_fd.hpp"
#include "pb/pb_monitor.hpp"
#include "pb/pb_signal.h"
#include "pb/pb_string.hpp"
#include "pb/pb_timer.h"
#include "pr/pr_process.h"
#include "tr/tr.hpp"

#include <cerrno>
#include <memory>
#include <net/if.h>
#include <optional>
#include <sys/socket.h>

PB_SORT_DECLARE( in___sort_IN___NW_INTERFACE_IMP )

struct in___NwInterfaceImp final : pb::Object<struct in___NwInterfaceImp, in___sort_IN___NW_INTERFACE_IMP> {
    using State = pb::Ref<struct inNwInterfaceState>;

    // The socket for interface queries, with the error where there is none.
    struct ControlSocket {
        const pb::Fd fd{ socket( AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0 ) };
        const int error = errno; // of the call above when it failed
    };

    explicit in___NwInterfaceImp( const struct pbString *identifier );

    void start( struct trAnchor *optionalAnchor );
    void run();

    // An empty request with the interface's name; nothing when the name has no place in it.
    std::optional<ifreq> request() const;
    bool ended() const PB_REQUIRES( monitor ) { return inNwInterfaceStateEnd( extState.get() ); }
    // After a change of the interface: its state is right at once, so that what was added is known to whoever takes it
    // away next; the process tells those who observe it.
    void refresh() PB_REQUIRES( monitor );

    // Fixed after construction.
    const pb::Ref<struct trStream> trace;
    const pb::String identifier;
    const std::string name; // for system calls; cut at no NUL, so that one with a NUL in it names no interface
    const ControlSocket controlSocket;
    // Set once, by start.
    pb::Ref<struct prProcess> process;
    pb::Ref<struct pbSignalable> signalable;
    pb::Ref<struct pbTimer> timer;

    mutable pb::Monitor monitor{ 50 };
    // Guarded by the monitor.
    bool endRequested PB_GUARDED_BY( monitor ) = false;
    pb::Ref<struct pbSignal> update PB_GUARDED_BY( monitor ) = pb::adopt( pbSignalCreate() );
    State extState PB_GUARDED_BY( monitor ) = pb::adopt( inNwInterfaceStateCreate() );

private:
    State read() const;
    void readLink( State &state ) const;
    void readLayer3( State &state ) const;
    void publish( State state ) PB_REQUIRES( monitor );
    // The update signal that is over, to be dropped after the monitor.
    [[nodiscard]] pb::Ref<struct pbSignal> assertUpdate() PB_REQUIRES( monitor );

    bool unannounced_ PB_GUARDED_BY( monitor ) = false; // published, and the update signal not yet asserted
};

#endif
