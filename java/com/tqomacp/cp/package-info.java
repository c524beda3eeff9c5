/**
 * The API to use: parse an OMA Client Provisioning push, check its MAC, read its settings.
 *
 * <pre>{@code
 * ProvisioningMessage message = ProvisioningMessage.parse(pdu);
 * if (message.header().authenticate(imsi, pin) == Authentication.AUTHENTIC) {
 *   for (NapDef nap : message.document().napDefs()) {
 *     apply(nap.name(), nap.napAddress(), nap.authInfos());
 *   }
 * }
 * }</pre>
 *
 * <p>{@link com.tqomacp.cp.ProvisioningMessage#parse(byte[])} runs the native parse, reads
 * everything back and releases the library's state in one hold of a process-wide lock, so any
 * thread may call it and the result, built of immutable records, holds no native state. {@link
 * com.tqomacp.cp.ProvisioningMessage#parseHeader(byte[])} reads the header only, for an
 * application that must first ask the user for a PIN.
 *
 * <p>Values are the texts the document stored. A parm that is absent reads null; a list with no
 * items is empty. A value the document gave as a value token that the decoder does not spell out
 * reads as a one-character string holding the token's code (U+0080 to U+00FF). Where the
 * library's natives report a value other than as stored, the accessor's documentation says what
 * it holds: the address and authentication types they name, NAPDEF's address type, bearers and
 * validities, the SERVICE values of proxy ports, and ROAMING. An entry of a list is null where
 * the library counts an item but does not return its value.
 */
package com.tqomacp.cp;
