// The dated steps that bring configuration of older versions of the module up to date, oldest first. The module starts
// them in this order before its backend, and stops them after it. A step looks at the version recorded for the module,
// leaves a tree of a newer one alone, and records the version that it reached whether it changed anything or not. Run
// again on what it left, without that record, a step changes nothing.
#ifndef IN_CSUPDATE_INTERNAL_H
#define IN_CSUPDATE_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

struct csUpdate;
struct csUpdateBackend;

// To 3.0: stacks name what their DNS does not ask.
void in___Csupdate20130104Startup( void );
void in___Csupdate20130104Shutdown( void );
void in___Csupdate20130104Func( struct csUpdateBackend *backend, struct csUpdate **update );

// To 8.0: the stack of the access tool keeps to the host by a flag.
void in___Csupdate20171013Startup( void );
void in___Csupdate20171013Shutdown( void );
void in___Csupdate20171013Func( struct csUpdateBackend *backend, struct csUpdate **update );

// To 9.0: TLS stacks have private keys of any kind.
void in___Csupdate20180703Startup( void );
void in___Csupdate20180703Shutdown( void );
void in___Csupdate20180703Func( struct csUpdateBackend *backend, struct csUpdate **update );

// To 11.0: filter entries say how they match.
void in___Csupdate20190306Startup( void );
void in___Csupdate20190306Shutdown( void );
void in___Csupdate20190306Func( struct csUpdateBackend *backend, struct csUpdate **update );

// To 12.0: TLS stacks have flags of their certificates apart.
void in___Csupdate20200204Startup( void );
void in___Csupdate20200204Shutdown( void );
void in___Csupdate20200204Func( struct csUpdateBackend *backend, struct csUpdate **update );

// To 13.0: stacks have a network; what is stored of the host's interfaces is their state.
void in___Csupdate20200219Startup( void );
void in___Csupdate20200219Shutdown( void );
void in___Csupdate20200219Func( struct csUpdateBackend *backend, struct csUpdate **update );

PB_DECLS_END

#endif
