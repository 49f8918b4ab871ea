"""What the tests of the Python package share: repeatable random definitions, and the command beside it."""
import os

import hypothesis
import matplotlib

matplotlib.use("Agg")
# The same examples in every run, and none kept from the one before.
hypothesis.settings.register_profile(
    "repeatable",
    derandomize=True,
    database=None,
    deadline=None,
    max_examples=100,
    suppress_health_check=[hypothesis.HealthCheck.too_slow],
)
hypothesis.settings.load_profile("repeatable")

SOURCE = os.environ["QARV_SOURCE_DIR"]
COMMAND = os.environ.get("QARV_WAVE_COMMAND", "")
