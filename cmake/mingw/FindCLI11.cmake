include(HostHeaders)
qvmap_host_headers(CLI11::CLI11 CLI CLI.hpp)
set(CLI11_FOUND TRUE)
