# The files served to the map page, by the addresses that it uses.
set(QL240_LEAFLET_DIR /usr/share/javascript/leaflet CACHE PATH "Folder of leaflet.min.js and leaflet.css")
set(QL240_ZONEINFO_DIR /usr/share/zoneinfo CACHE PATH "Folder of zone.tab, the source of the city names")

function(ql240_map_files target)
    set(base /BlackBox/ajaxMap)
    set(files)
    foreach(pair
            "${base}/jQuery1.5.1-clickeventerror.js=${CMAKE_CURRENT_FUNCTION_LIST_DIR}/ready.js"
            "${base}/newMap/KMlib_V1_3.js=${QL240_LEAFLET_DIR}/leaflet.min.js"
            "${base}/newMap/MISA_V2_06_offline.js=${CMAKE_CURRENT_FUNCTION_LIST_DIR}/base_map.js"
            "${base}/newMap/Index_newMap.js=${CMAKE_CURRENT_FUNCTION_LIST_DIR}/map.js"
            "${base}/newMap/tile_pictures.js=${CMAKE_CURRENT_FUNCTION_LIST_DIR}/tile_pictures.js"
            "${base}/newMap/leaflet.css=${QL240_LEAFLET_DIR}/leaflet.css"
            "${base}/newMap/map.css=${CMAKE_CURRENT_FUNCTION_LIST_DIR}/map.css"
            "${base}/newMap/countries.json=${CMAKE_CURRENT_FUNCTION_LIST_DIR}/countries-50m.json"
            "${base}/newMap/cities.txt=${QL240_ZONEINFO_DIR}/zone.tab")
        string(REPLACE "=" ";" pair "${pair}")
        list(GET pair 0 address)
        list(GET pair 1 file)
        if(NOT EXISTS ${file})
            message(FATAL_ERROR "The map needs ${file}")
        endif()
        set_source_files_properties(${file} PROPERTIES QT_RESOURCE_ALIAS ${address})
        list(APPEND files ${file})
    endforeach()
    qt_add_resources(${target} map PREFIX /map FILES ${files})
endfunction()
