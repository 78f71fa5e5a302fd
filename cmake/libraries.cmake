# in_library( NAME LIBRARIES... ): builds source/NAME/**.cpp once and makes of it
#   NAME         the shared library libNAME.so with SONAME, version node and hidden symbols
#   NAME_static  the same objects as an archive, for tests that look inside
# A library's public headers are its .h files without "_internal"; .hpp files stay in the tree.
function( in_library name )
    file( GLOB_RECURSE sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/source/${name}/*.cpp" )
    if( NOT sources )
        return()
    endif()
    add_library( ${name}_objects OBJECT ${sources} )
    target_include_directories( ${name}_objects PUBLIC "${PROJECT_SOURCE_DIR}/source" )
    target_link_libraries( ${name}_objects PUBLIC ${ARGN} )

    string( TOUPPER ${name} node )
    set( script "${CMAKE_CURRENT_BINARY_DIR}/${name}.map" )
    if( name STREQUAL "in" )
        file( CONFIGURE OUTPUT "${script}" CONTENT "${node}_${PROJECT_VERSION_MAJOR} { global: in[A-Z]*; local: *; };\n" @ONLY )
    else()
        # The platform libraries also export what the libraries above them call through in-tree headers.
        file( CONFIGURE OUTPUT "${script}" CONTENT
            "${node}_${PROJECT_VERSION_MAJOR} { global: ${name}[A-Z]*; ${name}___*; extern \"C++\" { ${name}::*; }; local: *; };\n" @ONLY )
    endif()
    add_library( ${name} SHARED $<TARGET_OBJECTS:${name}_objects> )
    add_library( in::${name} ALIAS ${name} )
    target_include_directories( ${name} PUBLIC
        "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/source>" "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/in-${PROJECT_VERSION_MAJOR}>" )
    set( private "" )
    set( public "" )
    foreach( library IN LISTS ARGN )
        if( library MATCHES "^(pb|tr|cs|pr|unix|rfc|iri)$" )
            list( APPEND public ${library} )
        else()
            list( APPEND private ${library} )
        endif()
    endforeach()
    target_link_libraries( ${name} PUBLIC ${public} PRIVATE ${private} )
    target_link_options( ${name} PRIVATE "-Wl,--version-script=${script}" )
    if( NOT IN_SANITIZE )
        target_link_options( ${name} PRIVATE "-Wl,--no-undefined" "-Wl,-Bsymbolic-functions" )
    endif()
    set_target_properties( ${name} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} LINK_DEPENDS "${script}" )

    add_library( ${name}_static STATIC $<TARGET_OBJECTS:${name}_objects> )
    target_include_directories( ${name}_static PUBLIC "${PROJECT_SOURCE_DIR}/source" )
    target_link_libraries( ${name}_static PUBLIC ${ARGN} )
endfunction()

include( GoogleTest )

# Sanitized builds optimise what is tested, not the tests: half of their time of building, and they run no slower.
set( IN_CALLER_OPTIONS "" )
if( IN_SANITIZE )
    set( IN_CALLER_OPTIONS -O0 -gline-tables-only )
endif()

# in_test( NAME SOURCES... LIBRARIES... [THREADS] [TIMEOUT s] [RESOURCE_LOCK name] ): one test program of GoogleTest. CTest
# runs each case in a process of its own, so that cases may start and stop the module, and counts a GTEST_SKIP as skipped.
# THREADS marks the programs that ThreadSanitizer is to see; a thread-sanitized build has no others.
function( in_test name )
    cmake_parse_arguments( PARSE_ARGV 1 arg "THREADS" "TIMEOUT;RESOURCE_LOCK" "SOURCES;LIBRARIES" )
    if( IN_SANITIZE STREQUAL "thread" AND NOT arg_THREADS )
        return()
    endif()
    add_executable( ${name} ${arg_SOURCES} )
    target_include_directories( ${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests" )
    target_compile_options( ${name} PRIVATE ${IN_CALLER_OPTIONS} )
    target_link_libraries( ${name} PRIVATE ${arg_LIBRARIES} GTest::gmock Threads::Threads )
    if( NOT arg_TIMEOUT )
        set( arg_TIMEOUT 900 ) # against hanging, not against a busy machine or the long forms
    endif()
    set( properties TIMEOUT ${arg_TIMEOUT} )
    if( arg_RESOURCE_LOCK )
        list( APPEND properties RESOURCE_LOCK ${arg_RESOURCE_LOCK} )
    endif()
    gtest_discover_tests( ${name} TEST_PREFIX "${name}: " DISCOVERY_MODE PRE_TEST PROPERTIES ${properties} )
endfunction()
