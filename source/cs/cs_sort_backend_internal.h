// The registered sorts and the modules that stand behind them, for the rest of the configuration service.
#ifndef CS_SORT_BACKEND_INTERNAL_H
#define CS_SORT_BACKEND_INTERNAL_H

#include "cs/cs_sort_backend.h"
#include "pb/pb_module.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_object.hpp"

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
    const Module *module = nullptr; // while calls are allowed
    pbInt calls = 0;
};

// Permission to call into a sort or to ask a module for its information: while one exists, the withdrawal of sort and
// module waits. Ask the object for truth before calling.
class Call {
public:
    explicit Call( std::shared_ptr<Sort> sort );
    explicit Call( std::shared_ptr<Module> module );
    Call( const Call & ) = delete;
    Call &operator=( const Call & ) = delete;
    ~Call();

    explicit operator bool() const noexcept { return calls_ != nullptr; }

private:
    std::shared_ptr<void> owner_;
    pbInt *calls_ = nullptr;
};

// What is registered and by whom. One monitor for all: registration is rare and calls enter and leave it in passing.
// It is never held over a call.
class Registry {
public:
    static Registry &instance();

    void addSort( const std::shared_ptr<Sort> &sort );
    void removeSort( const std::shared_ptr<Sort> &sort ); // waits for calls under way
    void setKeys( Sort &sort, std::span<const struct csKey> keys );
    void addModule( const std::shared_ptr<Module> &module );
    void removeModule( const std::shared_ptr<Module> &module ); // waits for calls under way

    std::shared_ptr<Sort> sortNamed( std::string_view name );
    std::vector<std::string> sortNames();
    std::span<const struct csKey> keys( const Sort &sort );
    std::vector<std::shared_ptr<Module>> modules();

private:
    friend class Call;

    pb::Monitor monitor_;
    pb::Condition callEnded_;
    std::vector<std::shared_ptr<Sort>> sorts_ PB_GUARDED_BY( monitor_ );
    std::vector<std::shared_ptr<Module>> modules_ PB_GUARDED_BY( monitor_ );
};

} // namespace cs

#endif
