package com.tqomacp.cp;

import java.util.List;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/**
 * The settings of one provisioning document: one list per top-level characteristic, in document
 * order, each record with its children nested. Immutable; it holds no native state.
 */
public final class ProvisioningDocument extends Record {
  ProvisioningDocument(Object[] parts) {
    super(parts);
  }

  /** {@return the logical proxies (PXLOGICAL)} */
  public @NotNull List<PxLogical> proxies() {
    return list(0);
  }

  /** {@return the network access points (NAPDEF)} */
  public @NotNull List<NapDef> napDefs() {
    return list(1);
  }

  /** {@return the BOOTSTRAP records} */
  public @NotNull List<Bootstrap> bootstraps() {
    return list(2);
  }

  /** {@return CLIENT-ID of the first CLIENTIDENTITY (later ones are ignored), null without one} */
  public @Nullable String clientIdentity() {
    return text(3);
  }

  /** {@return the VENDORCONFIG records} */
  public @NotNull List<VendorConfig> vendorConfigs() {
    return list(4);
  }

  /** {@return the application accounts (APPLICATION)} */
  public @NotNull List<Application> applications() {
    return list(5);
  }

  /** {@return the access rules (ACCESS)} */
  public @NotNull List<Access> accessRules() {
    return list(6);
  }

  /** {@return the Wi-Fi networks (WI-FI)} */
  public @NotNull List<Wifi> wifis() {
    return list(7);
  }
}
