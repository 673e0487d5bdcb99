"""What the tools share: preparing a picture as the program does, asking a model for its embedding, comparing two."""

import pathlib

import numpy as np
import tensorflow as tf


def prewhiten(picture: np.ndarray) -> np.ndarray:
    """Scales an RGB byte picture to mean 0 and deviation 1 over all its bytes; adds the batch axis.

    The floor of the deviation keeps a flat picture at zero instead of dividing by zero.
    """
    values = picture.astype(np.float64)
    deviation = max(values.std(), 1.0 / np.sqrt(values.size))
    return ((values - values.mean()) / deviation).astype(np.float32)[np.newaxis]


class Model:
    def __init__(self, path: pathlib.Path):
        # One thread and no delegate, as the program runs it.
        self.interpreter = tf.lite.Interpreter(
            model_path=str(path),
            num_threads=1,
            experimental_op_resolver_type=tf.lite.experimental.OpResolverType.BUILTIN_WITHOUT_DEFAULT_DELEGATES,
        )
        self.interpreter.allocate_tensors()

    def embed(self, picture: np.ndarray) -> np.ndarray:
        """The embedding as the model gives it, not of unit length."""
        self.interpreter.set_tensor(self.interpreter.get_input_details()[0]["index"], prewhiten(picture))
        self.interpreter.invoke()
        return self.interpreter.get_tensor(self.interpreter.get_output_details()[0]["index"])[0].copy()


def distance(a: np.ndarray, b: np.ndarray) -> float:
    """Euclidean distance of the two embeddings brought to unit length."""
    return float(np.linalg.norm(a / np.linalg.norm(a) - b / np.linalg.norm(b)))
