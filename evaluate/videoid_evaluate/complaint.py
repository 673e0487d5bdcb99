class Complaint(Exception):
    """What is wrong and what to do, in one sentence for the person who started the program."""
