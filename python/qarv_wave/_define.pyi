from ._core import check as check
from ._core import define as define
