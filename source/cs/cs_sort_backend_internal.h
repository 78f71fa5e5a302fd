// The registered sorts, update steps and the modules that stand behind them, for the rest of the configuration service.
#ifndef CS_SORT_BACKEND_INTERNAL_H
#define CS_SORT_BACKEND_INTERNAL_H

#include "cs/cs_sort_backend.h"
#include "cs/cs_update_backend.h"
#include "cs/cs_warnings.h"
#include "pb/pb_module.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_object.hpp"

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct csKey;

namespace cs {

// A module whose backend exists. The fields are fixed; calls is the registry's.
struct Module {
    const struct pbModule *module;
    struct pbStore *( *info )( void ); // or null
    pbInt calls = 0;
};

// What may be called while a module vouches for it; the fields are the registry's.
struct Callee {
    const Module *module = nullptr; // while calls are allowed
    pbInt calls = 0;
};

// A registered sort. The callbacks are fixed; the rest is the registry's.
struct Sort {
    const struct pbSort *sort;
    csSortTryCreateFunc *tryCreate;
    csSortConfigFunc *config;
    csSortSetConfigFunc *setConfig;
    csSortNormalizeConfigFunc *normalizeConfig;
    csSortStatusFunc *status;                           // or null
    csSortTraceCompleteAnchorFunc *traceCompleteAnchor; // or null
    std::span<const struct csKey> keys{};
    csSortWarningsFunc *warnings = nullptr;
    Callee callee{};
};

// A registered step of the migration. All but callee is fixed.
struct UpdateStep {
    std::string date; // "YYYY-MM-DD"
    csUpdateFunc *func;
    struct csUpdateBackend *backend; // there as long as a call is allowed
    Callee callee{};
};

// Permission to call into a sort or a step or to ask a module for its information: while one exists, the withdrawal of
// these waits. Ask the object for truth before calling.
class Call {
public:
    explicit Call( const std::shared_ptr<Sort> &sort ) : Call( std::shared_ptr<Callee>( sort, &sort->callee ) ) {}
    explicit Call( const std::shared_ptr<UpdateStep> &step ) : Call( std::shared_ptr<Callee>( step, &step->callee ) ) {}
    explicit Call( std::shared_ptr<Module> module );
    Call( const Call & ) = delete;
    Call &operator=( const Call & ) = delete;
    ~Call();

    explicit operator bool() const noexcept { return calls_ != nullptr; }

private:
    explicit Call( std::shared_ptr<Callee> callee );

    std::shared_ptr<void> owner_;
    pbInt *calls_ = nullptr;
};

// Runs the steps that may be called on the update, in the order of their dates.
void runSteps( struct csUpdate **update, const std::function<void( const UpdateStep & )> &afterEach );

// What is registered and by whom. One monitor for all: registration is rare and calls enter and leave it in passing.
// It is never held over a call.
class Registry {
public:
    static Registry &instance();

    void addSort( const std::shared_ptr<Sort> &sort );
    void removeSort( const std::shared_ptr<Sort> &sort ); // waits for calls under way
    void setKeys( Sort &sort, std::span<const struct csKey> keys );
    void addStep( const std::shared_ptr<UpdateStep> &step );
    void removeStep( const std::shared_ptr<UpdateStep> &step ); // waits for calls under way
    void setWarnings( Sort &sort, csSortWarningsFunc *warnings );
    void addModule( const std::shared_ptr<Module> &module );
    void removeModule( const std::shared_ptr<Module> &module ); // waits for calls under way

    std::shared_ptr<Sort> sortNamed( std::string_view name );
    std::vector<std::string> sortNames();
    std::span<const struct csKey> keys( const Sort &sort );
    std::vector<std::shared_ptr<UpdateStep>> steps(); // in the order of their dates
    csSortWarningsFunc *warnings( const Sort &sort ); // or null
    std::vector<std::shared_ptr<Module>> modules();

private:
    friend class Call;

    void withdraw( Callee &callee ) PB_REQUIRES( monitor_ );
    std::vector<std::shared_ptr<Callee>> callees() const PB_REQUIRES( monitor_ );

    pb::Monitor monitor_;
    pb::Condition callEnded_;
    std::vector<std::shared_ptr<Sort>> sorts_ PB_GUARDED_BY( monitor_ );
    std::vector<std::shared_ptr<UpdateStep>> steps_ PB_GUARDED_BY( monitor_ ); // as steps() gives them
    std::vector<std::shared_ptr<Module>> modules_ PB_GUARDED_BY( monitor_ );
};

} // namespace cs

#endif
