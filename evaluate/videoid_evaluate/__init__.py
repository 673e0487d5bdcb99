"""Error rates of video identifications, with the limits that the data allow."""

__version__ = "0.1.0"
