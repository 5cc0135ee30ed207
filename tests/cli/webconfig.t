voractl serve --web-config reads the web configuration format of
Prometheus's exporters: TLS with a certificate and key, basic-auth users
with bcrypt hashes.

  $ openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=127.0.0.1 \
  >   -addext subjectAltName=IP:127.0.0.1 -keyout key.pem -out cert.pem 2> /dev/null
  $ cat > web.yml <<'YAML'
  > tls_server_config:
  >   cert_file: cert.pem
  >   key_file: key.pem
  > basic_auth_users:
  >   prometheus: $2b$10$0MAwyrQ7Llxs4zKPYrI64Ozv282ZHFQ714frgIjs2CUMC.jW2mpHe
  > YAML
  $ serve() {
  >   : > serve.err
  >   voractl --sim --quiet $trace serve --listen 127.0.0.1:0 "$@" 2> serve.err &
  >   server=$!
  >   for i in $(seq 100); do grep -q serving serve.err && break; sleep 0.05; done
  >   address=$(grep -o -m 1 '127.0.0.1:[0-9]*' serve.err)
  > }
  $ fetch() { curl -s -o /dev/null -w '%{http_code}\n' "$@"; }

  $ serve --web-config web.yml
  $ sed 's/:[0-9][0-9]*\//:PORT\//' serve.err
  voractl: serving the board's metrics on https://127.0.0.1:PORT/metrics (basic auth)
  voractl: the board page is https://127.0.0.1:PORT/
  $ curl -s --cacert cert.pem -u prometheus:scrape-me https://$address/metrics | grep '^voradrv_up'
  voradrv_up 1
  $ fetch --cacert cert.pem https://$address/metrics
  401
  $ curl -s --cacert cert.pem -D - -o /dev/null https://$address/ | grep -i '^www-authenticate' | tr -d '\r'
  WWW-Authenticate: Basic realm="voradrv"
  $ fetch --cacert cert.pem -u prometheus:wrong https://$address/metrics
  401
  $ fetch --cacert cert.pem -u nobody:scrape-me https://$address/metrics
  401

Plain HTTP on the TLS port gets no answer. Without a min_version, TLS 1.2
is the least offered, with forward-secret key exchange and AEAD ciphers
only: a client that would take anything gets no handshake with TLS 1.0 or
1.1 or a CBC cipher. The next scrape is answered:

  $ fetch http://$address/metrics || echo "no answer"
  000
  no answer
  $ handshake() { echo | openssl s_client -connect $address "$@" 2>&1 | grep -o -m 1 'Cipher is .*'; }
  $ handshake -tls1 -cipher 'DEFAULT:@SECLEVEL=0'
  Cipher is (NONE)
  $ handshake -tls1_1 -cipher 'DEFAULT:@SECLEVEL=0'
  Cipher is (NONE)
  $ handshake -tls1_2 -cipher 'AES128-SHA:ECDHE-RSA-AES128-SHA:DHE-RSA-AES128-GCM-SHA256:@SECLEVEL=0'
  Cipher is (NONE)
  $ handshake -tls1_2
  Cipher is ECDHE-RSA-AES128-GCM-SHA256
  $ fetch --cacert cert.pem -u prometheus:scrape-me https://$address/metrics
  200
  $ kill -TERM $server; wait $server; echo "exit $?"
  exit 0

Basic auth alone, on plain HTTP. SIGHUP rereads the file, and the
certificate and key it names, while the module stays up: a file that
cannot be served leaves the configuration in use, and says so; one that
can serves every connection from then on:

  $ printf 'basic_auth_users:\n  prometheus: $2b$10$0MAwyrQ7Llxs4zKPYrI64Ozv282ZHFQ714frgIjs2CUMC.jW2mpHe\n' > auth.yml
  $ trace=--trace serve --web-config auth.yml
  $ fetch -u prometheus:scrape-me http://$address/metrics
  200
  $ fetch http://$address/metrics
  401
  $ hup() {
  >   cp "$1" auth.yml; kill -HUP $server
  >   for i in $(seq 100); do [ "$(grep -c SIGHUP serve.err)" = "$2" ] && break; sleep 0.05; done
  > }
  $ printf 'basic_auth_users:\n  prometheus: $2y$10$short\n' > broken.yml
  $ hup broken.yml 1
  $ fetch -u prometheus:scrape-me http://$address/metrics
  200
  $ hup web.yml 2
  $ fetch --cacert cert.pem -u prometheus:scrape-me https://$address/metrics
  200
  $ fetch http://$address/metrics || echo "no answer"
  000
  no answer
  $ kill -TERM $server; wait $server; echo "exit $?"
  exit 0
  $ grep -E '^(VoraLib|voractl: SIGHUP)' serve.err | sed 's/ =.*//'
  VoraLibInitialize()
  voractl: SIGHUP: web configuration auth.yml: basic_auth_users.prometheus: not a bcrypt hash (as htpasswd -B writes it: $2b$, a cost from 04 to 31, $ and 53 characters); the web configuration in use is kept
  voractl: SIGHUP: serving with the web configuration auth.yml as reread (basic auth)
  VoraLibUninitialize()
  $ voractl --sim --quiet serve --listen 127.0.0.1:0 2> serve.err & server=$!
  $ for i in $(seq 100); do grep -q serving serve.err && break; sleep 0.05; done
  $ kill -HUP $server; kill -TERM $server; wait $server; echo "exit $?"
  exit 0
  $ grep SIGHUP serve.err
  voractl: SIGHUP: there is no --web-config to reread

What the exporter cannot do is refused by name, before it listens:

  $ refused() { printf "$1" > bad.yml; voractl --sim serve --listen 127.0.0.1:0 --web-config bad.yml; }
  $ refused 'tls_server_config:\n  cert_file: cert.pem\n  key_file: key.pem\n  client_auth_type: RequireAndVerifyClientCert\n'
  voractl: web configuration bad.yml: tls_server_config.client_auth_type: only NoClientCert: client certificates are not supported
  [1]
  $ refused 'tls_server_config:\n  cert_file: cert.pem\n'
  voractl: web configuration bad.yml: tls_server_config: needs both cert_file and key_file
  [1]
  $ refused 'tls_server_config:\n  cert_file: cert.pem\n  key_file: key.pem\n  cipher_suites: [TLS_AES_128_GCM_SHA256]\n'
  voractl: web configuration bad.yml: tls_server_config.cipher_suites: not supported by this exporter (it supports cert_file, key_file, min_version and client_auth_type NoClientCert)
  [1]
  $ refused 'tls_server_config:\n  cert_file: cert.pem\n  key_file: key.pem\n  min_version: TLS10\n'
  voractl: web configuration bad.yml: tls_server_config.min_version: TLS12 or TLS13 (older versions are not offered)
  [1]
  $ refused 'tls_server_config:\n  cert_file: missing.pem\n  key_file: key.pem\n'
  voractl: cannot read the TLS certificate missing.pem: No such file or directory
  [1]
  $ refused 'tls_server_config:\n  cert_file: key.pem\n  key_file: cert.pem\n'
  libmicrohttpd: GnuTLS failed to setup x509 certificate/key: The requested data were not available.
  libmicrohttpd: Failed to initialize TLS support.
  voractl: cannot serve TLS with this certificate and key (is the key the certificate's?)
  [1]
  $ refused 'basic_auth_users:\n  prometheus: plain-text\n'
  voractl: web configuration bad.yml: basic_auth_users.prometheus: not a bcrypt hash (as htpasswd -B writes it: $2b$, a cost from 04 to 31, $ and 53 characters)
  [1]
  $ refused 'basic_auth_users:\n  prometheus: $2y$10$short\n'
  voractl: web configuration bad.yml: basic_auth_users.prometheus: not a bcrypt hash (as htpasswd -B writes it: $2b$, a cost from 04 to 31, $ and 53 characters)
  [1]
  $ refused ''
  voractl: web configuration bad.yml: empty: give tls_server_config or basic_auth_users, or leave out --web-config
  [1]
  $ : > empty.pem
  $ refused 'tls_server_config:\n  cert_file: empty.pem\n  key_file: key.pem\n'
  voractl: web configuration bad.yml: tls_server_config: empty.pem is empty
  [1]
  $ refused 'http_server_config:\n  http2: true\n'
  voractl: web configuration bad.yml: http_server_config: not supported: libmicrohttpd serves HTTP/1.1 only and the exporter sets its own headers
  [1]
  $ refused 'basic_auth_user:\n  prometheus: x\n'
  voractl: web configuration bad.yml: basic_auth_user: unknown setting (tls_server_config and basic_auth_users are read)
  [1]
  $ refused 'basic_auth_users:\n  a: $2b$10$x\n  a: $2b$10$y\n'
  voractl: web configuration bad.yml: basic_auth_users.a: given twice
  [1]
  $ refused 'tls_server_config: [\n'
  voractl: web configuration bad.yml: did not find expected node content at line 2
  [1]
  $ voractl --sim serve --web-config missing.yml
  voractl: cannot read the web configuration missing.yml: No such file or directory
  [1]
