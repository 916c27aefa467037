include(HostHeaders)
qvmap_host_headers(nlohmann_json::nlohmann_json nlohmann json.hpp)
set(nlohmann_json_FOUND TRUE)
