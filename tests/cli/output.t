--output never destroys what it is pointed at. These run as root, with a
device node of the test's own:

  $ [ "$(id -u)" = 0 ] || exit 80
  $ export VORA_SIM_LOG=1
  $ out() { voractl --sim export --format prometheus --output "$@"; }

A regular file, or none, is replaced atomically, never left half written:

  $ out board.prom && head -1 board.prom
  # HELP voradrv_boots_total Times the board has started (Boot up times).
  $ echo old > kept.prom && chmod 0640 kept.prom && out kept.prom && grep -c voradrv_ kept.prom
  153
  $ ls -A
  board.prom
  kept.prom
  $ (umask 027; out fresh.prom) && stat -c %a fresh.prom
  640

A symbolic link's target is written, the link stays:

  $ ln -s target.prom link.prom && out link.prom && stat -c %F link.prom && grep -c voradrv_ target.prom
  symbolic link
  153
  $ mkdir sub && ln -s sub/deep.prom via.prom && out via.prom && ls sub
  deep.prom

A FIFO and a character device are written to as they are, and so is
/dev/stdout; "-" is standard output:

  $ mkfifo fifo && { grep -c voradrv_ < fifo > count & } && out fifo && wait $! && cat count && stat -c %F fifo
  153
  fifo
  $ mknod null c 1 3 && out null && stat -c %F null
  character special file
  $ out /dev/stdout | grep -c voradrv_; stat -c %F /dev/stdout
  153
  symbolic link
  $ out - | grep -c voradrv_; [ ! -e ./- ] && echo "no file named -"
  153
  no file named -

A socket is connected to:

  $ python3 -c '
  > import socket, sys
  > s = socket.socket(socket.AF_UNIX); s.bind("board.sock"); s.listen(1); s.settimeout(30)
  > sys.stdout.write("listening\n"); sys.stdout.flush()
  > c = s.accept()[0]; c.settimeout(30); data = b""
  > while chunk := c.recv(65536): data += chunk
  > print(data.decode().count("voradrv_"))' > socket.out &
  $ while ! grep -q listening socket.out 2>/dev/null; do sleep 0.05; done; out board.sock; wait; tail -1 socket.out
  153

A directory or block device is refused, and nothing is written:

  $ mkdir dir && out dir
  voractl: cannot write dir: it is a directory (name a file in it)
  [1]
  $ mknod disk b 7 250 && out disk
  voractl: cannot write disk: it is neither a file nor a FIFO, character device or socket
  [1]
  $ ls dir; stat -c %F disk
  block special file
