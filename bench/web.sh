#!/bin/bash
# Sourced by benchmarks that need a web server as a measure of what is possible: nginx over HTTPS, with a certificate of the same kind
# and key type as the array's.
#   work=a folder of the caller's own, with what is served below www/; then startWeb, which leaves the server's process in $web, and at
#   the end stopProcesses $web.
web="" work=${work:?a folder of the caller}

waitFor() {                                  # WHAT COMMAND...: until the command succeeds
    local tries
    for tries in {1..200}; do "${@:2}" >/dev/null 2>&1 && return; sleep 0.05; done
    die "$1 did not begin to serve ($tries tries; logs: $(tail -n 3 "$work"/*.log))"
}

freePort() {                                 # one on which nobody answers
    local port
    while port=$((20000 + RANDOM % 10000)); (: >"/dev/tcp/127.0.0.1/$port") 2>/dev/null; do :; done
    echo "$port"
}

startWeb() {                                 # FILE [LOCATIONS]: leaves $web_port, $web_ca; FILE is one that is served; $web_workers
                                             # processes serve, 2 where it is not set
    local user=""
    web_port=$(freePort) web_ca=$work/web.pem
    [[ $EUID -ne 0 ]] || user="user root;"
    [[ -s $web_ca ]] || openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj /CN=127.0.0.1 \
        -addext subjectAltName=IP:127.0.0.1 -keyout "$work/key.pem" -out "$web_ca" 2>"$work/openssl.log"
    cat >"$work/nginx.conf" <<END
daemon off; worker_processes ${web_workers:-2}; pid $work/nginx.pid; error_log $work/nginx-errors.log; $user
events { worker_connections 2048; }
http {
    access_log off; default_type application/json; keepalive_requests 100000000; keepalive_timeout 600; sendfile on;
    log_format connections '\$connection';
    client_body_temp_path $work/t1; proxy_temp_path $work/t2; fastcgi_temp_path $work/t3; uwsgi_temp_path $work/t4; scgi_temp_path $work/t5;
    server {
        listen 127.0.0.1:$web_port ssl; ssl_certificate $web_ca; ssl_certificate_key $work/key.pem; root $work/www;
        ${2:-}
    }
}
END
    nginx -e "$work/nginx-errors.log" -c "$work/nginx.conf" >"$work/nginx.log" 2>&1 &
    export web=$!
    waitFor nginx curl -sS --fail --cacert "$web_ca" "https://127.0.0.1:$web_port$1"
}

stopProcesses() {                            # PID...: those of the caller
    local process
    for process in "$@"; do
        kill "$process" 2>/dev/null || continue
        wait "$process" 2>/dev/null || true
    done
}
