"""Runs a program whose standard input is a terminal, types what this
script reads from its own standard input into that terminal, and prints
everything the program wrote there. Exits with the program's exit code."""
import os
import pty
import sys

pid, terminal = pty.fork()
if pid == 0:
    os.execv(sys.argv[1], sys.argv[1:])
os.write(terminal, sys.stdin.buffer.read())
written = bytearray()
while True:
    try:
        chunk = os.read(terminal, 65536)
    except OSError:  # the program has ended and closed the terminal
        break
    if not chunk:
        break
    written += chunk
_, status = os.waitpid(pid, 0)
sys.stdout.buffer.write(bytes(written))
sys.exit(os.waitstatus_to_exitcode(status))
