# Where script/fetch-models puts what the distribution does not ship: MURKWELL_FETCHED.
if(DEFINED ENV{XDG_CACHE_HOME})
    set(MURKWELL_FETCHED "$ENV{XDG_CACHE_HOME}/murkwell")
else()
    set(MURKWELL_FETCHED "$ENV{HOME}/.cache/murkwell")
endif()
