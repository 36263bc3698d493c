"""A stand-in for pywin32's package of this name, see client.py."""
