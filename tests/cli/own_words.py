# SPDX-License-Identifier: GPL-3.0-or-later
"""What a program under test says itself."""


def own_words(stderr):
    """Wine has words of its own about disks and sound cards, and the sound server's library about a missing home."""
    others = ("wine: ", "ALSA lib ", "Failed to create secure directory")
    return "".join(line for line in stderr.splitlines(True) if not line.startswith(others))
