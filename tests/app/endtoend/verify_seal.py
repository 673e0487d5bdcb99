"""Verifies a detached seal by a library that has nothing to do with the program that made it.

verify_seal.py PUBLIC_KEY_JWK SEAL SEALED_FILE
"""
import sys

from jwcrypto import jwk, jws

key_file, seal_file, sealed_file = sys.argv[1:]
with open(key_file) as file:
    key = jwk.JWK.from_json(file.read())
with open(seal_file) as file:
    seal = file.read()
with open(sealed_file, "rb") as file:
    payload = file.read()
token = jws.JWS()
token.deserialize(seal)
token.objects["payload"] = payload
token.verify(key, alg={"OKP": "EdDSA", "EC": "ES256"}[key["kty"]])
assert token.jose_header["kid"] == key.thumbprint()
print(token.jose_header["kid"])
