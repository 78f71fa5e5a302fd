// Judges the configuration of one record, first by the sort's table of keys, then by the sort itself.
//
// Sorts drop bad values in silence, so the second step asks what becomes of each value: the configuration is normalised
// with and without it. A value is kept when it stands unchanged in the normalised form or makes any difference to it
// (a sort may write it differently: "010.0.0.1" becomes "10.0.0.1"). A value that makes no difference because another
// key overrides it is kept, too, when it would count on its own.
#include "cs/cs_config_check_internal.h"

#include "cs/cs_json.h"
#include "cs/cs_key_internal.h"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

#include <algorithm>
#include <map>

namespace cs {
namespace {

pb::String valueAt( const pb::Ref<struct pbStore> &store, std::string_view key )
{
    return store ? pb::adopt( pbStoreValueCstr( store.get(), key.data(), static_cast<pbInt>( key.size() ) ) ) : nullptr;
}

pb::Ref<struct pbStore> storeAt( const pb::Ref<struct pbStore> &store, std::string_view key )
{
    return store ? pb::adopt( pbStoreStoreCstr( store.get(), key.data(), static_cast<pbInt>( key.size() ) ) ) : nullptr;
}

bool sameInteger( const std::string &a, const std::string &b )
{
    pbInt left = 0, right = 0;
    return integerFromText( a, left ) && integerFromText( b, right ) && left == right;
}

bool hasUsableMembers( const JsonValue &container )
{
    return std::any_of( container.members.begin(), container.members.end(),
                        []( const auto &member ) { return member.usable(); } );
}

// What the sort makes of a configuration. Without defaults tells an explicit setting from a default of the same value.
struct Form {
    pb::Ref<struct pbStore> withDefaults;
    pb::Ref<struct pbStore> withoutDefaults;

    bool operator==( const Form & ) const = default;
};

class ConfigCheck {
public:
    ConfigCheck( const Sort &sort, JsonValue &config, const std::string &record, Problems &problems )
        : sort_( sort ), keys_( Registry::instance().keys( sort ) ), config_( config ), record_( record ),
          problems_( problems )
    {
    }

    void run()
    {
        checkKeys( config_, keys_ );
        // What a broken text would have said further on might decide what is kept.
        if ( config_.complete )
            checkKept( config_, form( storeFromJson( config_ ) ).withDefaults, keys_ );
    }

private:
    // By the table. An empty one describes nothing.

    void checkKeys( JsonValue &container, Keys keys )
    {
        for ( JsonMember &member : container.members ) {
            path_.push_back( &member );
            checkMember( member, keys, memberKey( keys, container, member.key ) );
            path_.pop_back();
        }
    }
    void checkMember( JsonMember &member, Keys siblings, const struct csKey *optionalKey )
    {
        const JsonValue &value = member.value;
        if ( member.duplicate )
            return tell( member.keyOffset, { "the key stands twice", "once" } );
        if ( !siblings.empty() && !optionalKey )
            return tell( member.keyOffset,
                         problems_.full() ? Finding() : unknownName( "key", member.key, keyNames( siblings ) ) );
        if ( !value.complete && !value.isContainer() )
            return; // the text ends before the value, which the reader has told
        if ( value.kind == JsonValue::Kind::Null )
            return tell( value.offset, { "null is no value", expected( optionalKey ) } );
        if ( optionalKey )
            if ( const Finding problem = keyProblem( *optionalKey, value ); !problem.what.empty() )
                return tell( value.offset, problem );
        if ( optionalKey && optionalKey->kind == CS_KEY_FLAGS && problems_.wantsWarnings() )
            if ( const std::string flag = repeatedFlag( value.text ); !flag.empty() )
                problems_.warn( value.offset, subject(), { "the flag \"" + flag + "\" stands twice" } );
        if ( value.isContainer() ) {
            checkKeys( member.value, subKeys( optionalKey ) );
            if ( value.complete && value.kind == JsonValue::Kind::Object )
                checkRequired( value, subKeys( optionalKey ) );
        }
    }
    void checkRequired( const JsonValue &object, Keys keys )
    {
        for ( const struct csKey &key : keys ) {
            const auto isKey = [&]( const JsonMember &member ) { return member.key == key.key; };
            if ( key.flags & CS_KEY_FLAG_REQUIRED &&
                 std::none_of( object.members.begin(), object.members.end(), isKey ) )
                tell( object.offset, { std::string( "\"" ) + key.key + "\" is missing", expectedText( key ) } );
        }
    }

    // By the sort. kept is what stands at the same place in the normalised form, or null where that cannot be told from
    // the whole: entries of an array move when one before them is dropped.

    void checkKept( JsonValue &container, pb::Ref<struct pbStore> kept, Keys keys )
    {
        const auto all = static_cast<pbInt>( container.members.size() );
        const bool moved = container.kind == JsonValue::Kind::Array && kept && pbStoreLength( kept.get() ) != all;
        if ( moved )
            kept = nullptr;
        for ( JsonMember &member : container.members ) {
            if ( !member.usable() )
                continue;
            path_.push_back( &member );
            const struct csKey *key = memberKey( keys, container, member.key );
            if ( !member.value.isContainer() )
                checkValueKept( member, valueAt( kept, member.key ), key );
            else if ( hasUsableMembers( member.value ) ) // an empty store says nothing that could be dropped
                checkStoreKept( member, storeAt( kept, member.key ), key );
            path_.pop_back();
        }
        if ( moved && problems_.wantsWarnings() )
            warnOfEqualEntries( container );
    }
    // Of entries that have the same normalised form the sort has kept one.
    void warnOfEqualEntries( JsonValue &array )
    {
        std::map<std::string, const JsonMember *> firsts;
        for ( JsonMember &member : array.members ) {
            if ( !member.usable() )
                continue;
            path_.push_back( &member );
            const Form alone = form( focused( Scope::Alone ) );
            const auto [first, isNew] = firsts.emplace(
                pb::utf8( pb::adopt( csJsonFromStore( alone.withDefaults.get(), CS_JSON_SHORT ) ) ), &member );
            if ( !isNew )
                problems_.warn( member.value.offset, subject(),
                                { "the same as entry " + first->second->key + ", which alone counts" } );
            path_.pop_back();
        }
    }
    void checkStoreKept( JsonMember &member, pb::Ref<struct pbStore> kept, const struct csKey *key )
    {
        if ( !kept ) {
            const Form with = form( focused( Scope::Around ) );
            kept = placeOf( with ).store;
            if ( !kept && with == form( focused( Scope::Around, Omit::Focus ) ) ) {
                if ( !member.flawed ) // else it is dropped for what was told already
                    tellDropped( member, key, with );
                return;
            }
        }
        checkKept( member.value, std::move( kept ), subKeys( key ) );
    }
    void checkValueKept( JsonMember &member, const pb::String &kept, const struct csKey *key )
    {
        const std::string &text = member.value.text;
        if ( kept && pb::utf8( kept ) == text )
            return;
        const Form with = form( focused( Scope::Around ) );
        const pb::String now = placeOf( with ).text;
        if ( now && ( pb::utf8( now ) == text || sameInteger( pb::utf8( now ), text ) ) )
            return;
        if ( with != form( focused( Scope::Around, Omit::Focus ) ) )
            return;
        const Form alone = form( focused( Scope::Alone ) );
        const pb::String own = placeOf( alone ).text;
        const bool countsAlone =
            ( own && pb::utf8( own ) == text ) || alone != form( focused( Scope::Alone, Omit::Focus ) );
        if ( countsAlone && now )
            return; // overridden
        if ( countsAlone )
            return tell( member.value.offset,
                         { '"' + printable( text ) + "\" does not go with the other values", expected( key ) } );
        tellDropped( member, key, with );
    }

    void tellDropped( JsonMember &member, const struct csKey *key, const Form &with )
    {
        const bool isEntry = path_.size() > 1 && path_[path_.size() - 2]->value.kind == JsonValue::Kind::Array;
        if ( !key && !isEntry && !placeOf( with ).text )
            return tell( member.keyOffset, unknownName( "key or value", member.key, siblingNames( with ) ) );
        const std::string what = member.value.isContainer()
                                     ? "not accepted as it stands"
                                     : '"' + printable( member.value.text ) + "\" is not accepted";
        tell( member.value.offset, { what, expected( key ) } );
    }

    // The configuration seen from the member at the end of path_. Of the arrays on the way only the entry on the path
    // is there, so that an entry is judged by itself and a long array costs no more than its entries.
    enum class Scope { Around, Alone }; // with all that stands beside the path, or with the path alone
    enum class Omit { Nothing, Focus };

    pb::Ref<struct pbStore> focused( Scope scope, Omit omit = Omit::Nothing ) const
    {
        return focused( config_, 0, scope, omit );
    }
    pb::Ref<struct pbStore> focused( const JsonValue &container, size_t depth, Scope scope, Omit omit ) const
    {
        const JsonMember &focus = *path_[depth];
        const bool isArray = container.kind == JsonValue::Kind::Array;
        auto store = pb::adopt( pbStoreCreate() );
        const auto setFocus = [&] {
            const std::string &key = isArray ? FirstEntry : focus.key;
            if ( depth + 1 < path_.size() )
                pbStoreSetStoreCstr( store.address(), key.data(), static_cast<pbInt>( key.size() ),
                                     focused( focus.value, depth + 1, scope, omit ).get() );
            else if ( omit == Omit::Nothing )
                setFromJson( store, key, focus.value );
        };
        if ( isArray || scope == Scope::Alone ) {
            setFocus();
            return store;
        }
        for ( const JsonMember &member : container.members )
            if ( &member == &focus )
                setFocus();
            else if ( member.usable() )
                setFromJson( store, member.key, member.value );
        return store;
    }

    struct Placed {
        pb::Ref<struct pbStore> parent, store;
        pb::String text;
    };
    // What the normalised form of a focused configuration holds at the path.
    Placed placeOf( const Form &form ) const
    {
        Placed placed;
        placed.store = form.withDefaults;
        const JsonValue *container = &config_;
        for ( const JsonMember *member : path_ ) {
            const std::string &key = container->kind == JsonValue::Kind::Array ? FirstEntry : member->key;
            placed.parent = std::move( placed.store );
            placed.text = valueAt( placed.parent, key );
            placed.store = storeAt( placed.parent, key );
            container = &member->value;
        }
        return placed;
    }
    // Where no table describes them, the keys are those that the sort writes.
    std::vector<std::string> siblingNames( const Form &form ) const
    {
        std::vector<std::string> names;
        if ( const auto parent = placeOf( form ).parent )
            for ( pbInt i = 0; i < pbStoreLength( parent.get() ); ++i )
                names.push_back( pb::utf8( pb::adopt( pbStoreKeyAt( parent.get(), i ) ) ) );
        return names;
    }

    Form form( const pb::Ref<struct pbStore> &store ) const
    {
        return { pb::adopt( sort_.normalizeConfig( store.get(), true ) ),
                 pb::adopt( sort_.normalizeConfig( store.get(), false ) ) };
    }

    static std::string expected( const struct csKey *optionalKey )
    {
        return optionalKey ? expectedText( *optionalKey ) : "a value that the sort accepts";
    }
    // The member at the end of path_.
    Subject subject() const
    {
        Subject subject{ record_ };
        for ( const JsonMember *member : path_ )
            subject.key += ( subject.key.empty() ? "" : "." ) + printable( member->key );
        return subject;
    }
    void tell( size_t offset, const Finding &finding )
    {
        for ( JsonMember *member : path_ )
            member->flawed = true;
        path_.back()->bad = true;
        problems_.add( offset, subject(), finding );
    }

    static inline const std::string FirstEntry = "0";

    const Sort &sort_;
    const Keys keys_;
    JsonValue &config_;
    const std::string &record_;
    Problems &problems_;
    std::vector<JsonMember *> path_; // from the configuration to what is looked at
};

} // namespace

void checkConfig( const Sort &sort, JsonValue &config, const std::string &record, Problems &problems )
{
    ConfigCheck( sort, config, record, problems ).run();
}

} // namespace cs
