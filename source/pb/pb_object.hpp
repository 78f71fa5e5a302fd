// The C++ behind the C face: Object (header of every type), Ref (the one owner of a reference), edit (copy on write),
// Defaulted (a setting with its is-default mark) and the macro that defines a type's standard operations.
// In-tree only; never installed.
#ifndef PB_OBJECT_HPP
#define PB_OBJECT_HPP

#include "pb/pb_assert.hpp"
#include "pb/pb_obj.h"

#include <atomic>
#include <compare>
#include <concepts>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

struct pbSort {
    const char *name;
    void ( *free )( struct pbObj *obj );
    struct pbString *( *toString )( const struct pbObj *obj );                // null: the sort's name
    pbInt ( *compare )( const struct pbObj *a, const struct pbObj *b );       // null: identity
};

struct pbObj {
    const struct pbSort *const sort;
    mutable std::atomic<int64_t> references{ 1 };

    explicit pbObj( const struct pbSort *sort ) noexcept : sort( sort ) {}
};

extern "C" {
// Small-object memory from thread-local free lists; larger sizes and sanitized builds go to the global allocator.
// Free on any thread, with the size that was allocated.
PB_API void *pb___MemoryAllocate( size_t size );
PB_API void pb___MemoryFree( void *memory, size_t size ) noexcept;
}

namespace pb {

inline void retain( const pbObj *obj ) noexcept
{
    // A new reference is made from an existing one, so nothing needs to be ordered.
    obj->references.fetch_add( 1, std::memory_order_relaxed );
}

inline void release( const pbObj *obj ) noexcept
{
    // A sole owner needs no read-modify-write: nobody else can reach the object.
    if ( obj->references.load( std::memory_order_acquire ) == 1
         || obj->references.fetch_sub( 1, std::memory_order_acq_rel ) == 1 )
        obj->sort->free( const_cast<pbObj *>( obj ) );
}

inline bool isShared( const pbObj *obj ) noexcept
{
    return obj->references.load( std::memory_order_acquire ) > 1;
}

// Base of every object type. Copying an object copies its fields; the copy starts at one reference.
template <class T, const pbSort &Sort> struct Object : pbObj {
    static constexpr const pbSort &sortRecord = Sort;

    Object() noexcept : pbObj( &Sort ) {}
    Object( const Object & ) noexcept : pbObj( &Sort ) {}
    Object &operator=( const Object & ) = delete;

    // The header takes no part in a value's comparison.
    std::strong_ordering operator<=>( const Object & ) const noexcept { return std::strong_ordering::equal; }
    bool operator==( const Object & ) const noexcept { return true; }

    static void *operator new( size_t size ) { return pb___MemoryAllocate( size ); }
    static void *operator new( size_t, void *place ) noexcept { return place; }
    static void operator delete( void *memory, size_t size ) noexcept { pb___MemoryFree( memory, size ); }
};

// Owns one reference, or none.
template <class T> class Ref {
public:
    Ref() noexcept = default;
    Ref( std::nullptr_t ) noexcept {}
    Ref( const Ref &other ) noexcept : obj_( other.obj_ )
    {
        if ( obj_ )
            pb::retain( header( obj_ ) );
    }
    Ref( Ref &&other ) noexcept : obj_( std::exchange( other.obj_, nullptr ) ) {}
    Ref &operator=( Ref other ) noexcept // by value: the new reference exists before the old one goes
    {
        std::swap( obj_, other.obj_ );
        return *this;
    }
    ~Ref()
    {
        if ( obj_ )
            pb::release( header( obj_ ) );
    }

    T *get() const noexcept { return obj_; }
    T *operator->() const noexcept { return obj_; }
    T &operator*() const noexcept { return *obj_; }
    explicit operator bool() const noexcept { return obj_ != nullptr; }

    // Hands the reference to the caller.
    [[nodiscard]] T *release() noexcept { return std::exchange( obj_, nullptr ); }
    // A new reference for the caller, or null: what a getter returns.
    [[nodiscard]] T *share() const noexcept { return Ref( *this ).release(); }
    void reset() noexcept { *this = Ref(); }
    // For setters that take the address of the reference.
    T **address() noexcept { return &obj_; }

    static Ref adopting( T *obj ) noexcept
    {
        Ref ref;
        ref.obj_ = obj;
        return ref;
    }
    static Ref retaining( const T *obj ) noexcept
    {
        if ( obj )
            pb::retain( header( obj ) );
        return adopting( const_cast<T *>( obj ) );
    }

    // Identity of the referenced object; values compare with <=> and ==.
    bool is( const Ref &other ) const noexcept { return obj_ == other.obj_; }

    // Absent first, then as the sort compares: what pbObjCompare does.
    friend std::strong_ordering operator<=>( const Ref &a, const Ref &b ) noexcept
    {
        return pbObjCompare( header( a.obj_ ), header( b.obj_ ) ) <=> 0;
    }
    friend bool operator==( const Ref &a, const Ref &b ) noexcept { return ( a <=> b ) == 0; }

private:
    // Every object begins with its header; the type may be incomplete here.
    static const pbObj *header( const T *obj ) noexcept { return reinterpret_cast<const pbObj *>( obj ); }

    T *obj_ = nullptr;
};

// Takes over a new reference.
template <class T> [[nodiscard]] Ref<T> adopt( T *obj ) noexcept { return Ref<T>::adopting( obj ); }
// Makes a reference of a borrowed object (or of null).
template <class T> [[nodiscard]] Ref<std::remove_const_t<T>> share( T *obj ) noexcept
{
    return Ref<std::remove_const_t<T>>::retaining( obj );
}
template <class T, class... Arguments> [[nodiscard]] Ref<T> make( Arguments &&...arguments )
{
    return Ref<T>::adopting( new T( std::forward<Arguments>( arguments )... ) );
}

// The object behind a caller's reference, made the caller's own first (copy on write).
template <class T> T &edit( T **reference )
{
    T *current = *reference;
    if ( isShared( current ) ) {
        *reference = new T( *current );
        pb::release( current );
    }
    return **reference;
}

// A setting with its is-default mark; an explicit setting sorts before a default one, then by value.
template <class T> struct Defaulted {
    bool isDefault = true;
    T value{};

    constexpr Defaulted( T initial ) : value( initial ) {}
    void set( T explicitValue )
    {
        isDefault = false;
        value = explicitValue;
    }
    void setDefault( T defaultValue )
    {
        isDefault = true;
        value = defaultValue;
    }
    auto operator<=>( const Defaulted & ) const = default;
};

namespace detail {

template <class T>
concept HasToString = requires( const T &value ) {
    { value.toString() } -> std::same_as<Ref<struct pbString>>;
};

// Object's own order is inherited and would make every object of a type equal: only a type's own member counts.
template <class C, class R> std::type_identity<C> memberOf( R ( C::* )( const C & ) const );
template <class T>
concept HasOrder = requires {
    { memberOf( &T::operator<=> ) } -> std::same_as<std::type_identity<T>>;
};

template <class T> pbInt compareObjects( const pbObj *a, const pbObj *b )
{
    const auto order = static_cast<const T &>( *a ) <=> static_cast<const T &>( *b );
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

consteval const char *sortText( const char *record )
{
    // "in___sort_IN_STACK" is the record of the sort "IN_STACK"
    for ( const char *text = record; *text; ++text )
        if ( text[0] == '_' && text[1] == 's' && text[2] == 'o' && text[3] == 'r' && text[4] == 't' && text[5] == '_' )
            return text + 6;
    throw "not the name of a sort record";
}

template <class T> constexpr pbSort makeSort( const char *name )
{
    pbSort sort{ name, []( pbObj *obj ) { delete static_cast<T *>( obj ); }, nullptr, nullptr };
    if constexpr ( HasToString<T> )
        sort.toString = []( const pbObj *obj ) { return static_cast<const T *>( obj )->toString().release(); };
    if constexpr ( HasOrder<T> )
        sort.compare = compareObjects<T>;
    return sort;
}

} // namespace detail
} // namespace pb

// Declares a sort record before the struct that names it.
#define PB_SORT_DECLARE( sortRecord ) extern const struct pbSort sortRecord;

// Defines the sort record and the standard operations of a type. A member `pb::Ref<pbString> toString() const` becomes
// its text form, operator<=> its comparison; without them the object defaults apply. The prototypes stand in the
// type's header.
#define PB_OBJECT_DEFINE( type, sortRecord )                                                                           \
    constinit const struct pbSort sortRecord =                                                                         \
        pb::detail::makeSort<struct type>( pb::detail::sortText( #sortRecord ) );                                      \
    extern "C" const struct pbSort *type##Sort( void ) { return &sortRecord; }                                         \
    extern "C" struct type *type##Retain( const struct type *obj )                                                     \
    {                                                                                                                  \
        PB_ASSERT( obj );                                                                                              \
        return pb::share( obj ).release();                                                                             \
    }                                                                                                                  \
    extern "C" void type##Release( const struct type *obj )                                                            \
    {                                                                                                                  \
        if ( obj )                                                                                                     \
            pb::release( obj );                                                                                        \
    }                                                                                                                  \
    extern "C" struct pbObj *type##Obj( const struct type *obj ) { return const_cast<struct type *>( obj ); }          \
    extern "C" struct type *type##From( struct pbObj *obj )                                                            \
    {                                                                                                                  \
        PB_ASSERT_TEXT( !obj || pbObjSort( obj ) == &sortRecord, "!obj || pbObjSort(obj)==&" #sortRecord );            \
        return static_cast<struct type *>( obj );                                                                      \
    }                                                                                                                  \
    extern "C" struct pbString *type##ToString( const struct type *obj ) { return pbObjToString( obj ); }              \
    extern "C" pbInt type##Compare( const struct type *a, const struct type *b ) { return pbObjCompare( a, b ); }      \
    extern "C" pbBool type##Equals( const struct type *a, const struct type *b ) { return pbObjEquals( a, b ); }

#endif
