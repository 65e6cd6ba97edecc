#!/usr/bin/env bash
# The command inspect: what the written page holds, and what the server answers to whom.
#   inspect.sh QNVTOOL FOLDER-OF-BUILT-FILES
. "$(dirname "${BASH_SOURCE[0]}")/../support/shell_test.sh"
needs_programs python3

pages=$root/tests/calls/pages
# A compressed file: the page gets it with stored blocks.
expect 0 "" "" trim "$pages/color.qnv" -o 'a & b.qnv'
expect 0 "" "" inspect 'a & b.qnv' "$pages/dual.qnv" -o page.html
if ! python3 - page.html "$root/inspector/built" <<'EOF'; then
import base64, gzip, html, re, sys
page = open(sys.argv[1], encoding='utf-8').read()
built = open(sys.argv[2] + '/inspector.html', encoding='utf-8').read()
elements = re.findall(r'<script type="application/octet-stream" ([^>]*)>([^<]*)</script>\n', page)
assert [html.unescape(a) for a, _ in elements] == [
    'id="qnv-engine"', 'class="qnv-file" data-name="a & b.qnv"', 'class="qnv-file" data-name="dual.qnv"'], elements
data = [gzip.decompress(base64.b64decode(text)) for _, text in elements]
assert data[0] == open(sys.argv[2] + '/engine.wasm', 'rb').read()
for name, bytes in (('first', data[1]), ('second', data[2])):
    open(name + '.qnv', 'wb').write(bytes)
# Nothing else was added, and all of it before the end of the body.
end = page.rindex('</body>')
assert page.index('id="qnv-engine"') < end
assert re.sub(r'<script type="application/octet-stream".*?</script>\n', '', page, flags=re.S) == built
EOF
  fail "the page does not hold what it should"
fi
expect 0 "653 calls compared, 0 differences" "" diff first.qnv 'a & b.qnv'
expect 0 "653 calls," "" replay first.qnv
grep -qF "0 differences" stdout || fail "the stored copy replays otherwise: $(cat stdout)"
expect 0 "" "" dump first.qnv --from 600 --count 5 # by its index
expect 0 "653 calls compared, 0 differences" "" diff second.qnv "$pages/dual.qnv"
python3 - first.qnv <<'EOF' || fail "the copy has compressed blocks"
import sys
data = open(sys.argv[1], 'rb').read()
at, kinds = 24, []
while data[at:at + 4] == b'QBLK':
    assert data[at + 5] == 0
    kinds.append(data[at + 4])
    at += 24 + int.from_bytes(data[at + 8:at + 12], 'little')
assert kinds[-1] == 2 and data[-8:] == b'QNVINDEX', kinds
EOF

# What cannot be done.
expect 1 "" "either -o names the page to write, or --serve shows it" inspect "$pages/color.qnv"
expect 1 "" "either -o names the page to write, or --serve shows it" inspect "$pages/color.qnv" -o x.html --serve
expect 2 "" "missing.qnv: at byte 0: the file cannot be opened" inspect missing.qnv -o x.html
echo "no calls" >text.qnv
expect 2 "" "text.qnv: at byte 0: this is no call file" inspect text.qnv -o x.html
expect 3 "" "no such folder/x.html" inspect "$pages/color.qnv" -o "no such folder/x.html"
[ ! -e x.html ] || fail "a page was written in spite of an error"
# A file that was cut off: what is complete is shown, and an older page stays until the new one is complete.
head -c 20 "$pages/color.qnv" >cut.qnv
expect 0 "" "cut.qnv: at byte 20: the file ends inside its header" inspect cut.qnv -o cut.html
grep -q 'data-name="cut.qnv"' cut.html || fail "the cut file is not in the page"

# The server.
"$tool" inspect "$pages/color.qnv" --serve >url 2>server.log &
started+=($!)
for _ in $(seq 100); do
  [ ! -s url ] || break
  sleep 0.1
done
python3 - "$(cat url)" "$pages/color.qnv" <<'EOF' || fail "the server: $(cat server.log)"
import http.client, re, socket, sys
url = sys.argv[1]
port = int(re.fullmatch(r'http://127\.0\.0\.1:(\d+)/', url).group(1))
def ask(method, path, host=None):
    connection = http.client.HTTPConnection('127.0.0.1', port, timeout=20)
    connection.putrequest(method, path, skip_host=True)
    if host is None or host:
        connection.putheader('Host', host or f'127.0.0.1:{port}')
    connection.endheaders()
    reply = connection.getresponse()
    return reply, reply.read()
idle = socket.create_connection(('127.0.0.1', port))  # as browsers keep connections; nobody waits for it
reply, body = ask('GET', '/')
assert reply.status == 200 and reply.getheader('Content-Type') == 'text/html; charset=utf-8', reply.status
assert b'data-name="color.qnv"' in body and b'id="qnv-engine"' in body
size = len(body)
reply, body = ask('HEAD', '/', f'localhost:{port}')
assert reply.status == 200 and body == b'' and int(reply.getheader('Content-Length')) == size
for host in ('pages.example', f'pages.example:{port}', '127.0.0.1', f'127.0.0.1:{port}.example', ''):
    reply, body = ask('GET', '/', host)
    assert reply.status == 403 and b'qnv' not in body, (host, reply.status)
for method in ('POST', 'PUT', 'DELETE', 'OPTIONS'):
    reply, _ = ask(method, '/')
    assert reply.status == 405 and reply.getheader('Allow') == 'GET, HEAD', method
assert ask('GET', '/etc/passwd')[0].status == 404
assert ask('GET', '/?call=3')[0].status == 200
def ask_raw(request):
    raw = socket.create_connection(('127.0.0.1', port), timeout=20)
    raw.sendall(request)
    return raw.recv(100)
assert ask_raw(b'GET /\r\n\r\n').startswith(b'HTTP/1.1 400 ')
assert ask_raw(b'nonsense\r\n\r\n') == b''  # closed
assert ask_raw(b'GET / HTTP/1.1\r\nX: ' + b'x' * 20000).startswith(b'HTTP/1.1 431 ')  # without end: not collected
# One name of this machine does not help another host.
for names in ((b'pages.example', b'127.0.0.1:%d' % port), (b'127.0.0.1:%d' % port, b'pages.example')):
    hosts = b''.join(b'Host: %s\r\n' % name for name in names)
    assert ask_raw(b'GET / HTTP/1.1\r\n' + hosts + b'\r\n').startswith(b'HTTP/1.1 403 '), names
EOF
# On this machine only.
port=$(sed 's/.*:\([0-9]*\)\/$/\1/' url)
if command -v ss >/dev/null; then
  ss -Hltn "sport = :$port" | grep -q "127.0.0.1:$port" || fail "the server does not listen on 127.0.0.1"
fi
# The port is taken, and nothing else is.
expect 1 "" "port $port of 127.0.0.1 cannot be used" inspect "$pages/color.qnv" --serve --port "$port"
kill -TERM "${started[0]}"
wait "${started[0]}"
[ $? -eq 143 ] || fail "the server did not end by the signal"
finish_test
